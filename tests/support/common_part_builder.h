#ifndef ARBORIST_TESTS_SUPPORT_COMMON_PART_BUILDER_H
#define ARBORIST_TESTS_SUPPORT_COMMON_PART_BUILDER_H

#include <memory>
#include <string>
#include <vector>

#include "arborist/model/common_part.h"

/// Column, result column or JSON member `key` of the given type; its id is its key.
std::shared_ptr<Param> ParamOf(const std::string& key, const std::string& type);
/// The parameters by their ids.
ParamMap ParamMapOf(const std::vector<std::shared_ptr<Param>>& params);

/// A range of event ids; the parameters of a bean's first range are the columns of its table.
std::shared_ptr<ThresholdOrLumbraBean::LumbraDataItem> EventsOf(
    const std::string& min, const std::string& max, const std::vector<std::shared_ptr<Param>>& params = {});

std::shared_ptr<ThresholdOrLumbraBean> BeanOf(
    const std::string& name, const ThresholdOrLumbraBean::LumbraDataList& events, const std::string& type = "");

/// A bean for external databases in these directories, with statements for a table "made".
std::shared_ptr<DefDbTableBean> TableBeanOf(const std::string& name, const std::vector<std::string>& directories,
    const std::string& dbName, const std::vector<std::string>& sql = {});

std::shared_ptr<CommonPart> PartOf(const CommonPart::CombineCommonPart::ThresholdLumbraList& beans,
    const CommonPart::CombineCommonPart::DefDbTableCommonList& tables = {});

#endif
