#ifndef ARBORIST_DIAGNOSIS_CASES_RECORDED_DATABASES_H
#define ARBORIST_DIAGNOSIS_CASES_RECORDED_DATABASES_H

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "diagnosis/problem.h"

namespace diagnosis::cases {

/// Writes external databases of a device in the form that cases have.
class RecordedDatabases {
public:
    /// Takes the files of these names, at most `mostRows` rows.
    RecordedDatabases(std::set<std::string> names, std::size_t mostRows)
        : mNames(std::move(names)), mMostRows(mostRows)
    {
    }

    /// Takes the databases below `folder`, and those in archives below it. `name` is the folder's path on the device,
    /// `root` the device's root directory, which links don't leave; empty for this machine.
    std::optional<Failure> AddFolder(const std::string& folder, const std::string& name, const std::string& root);

    /// The tables of each database as JSON, by path. "/data/panel.zip/panel.db" for one in an archive.
    const std::map<std::string, std::string>& Json() const { return mJson; }
    std::size_t Rows() const { return mRows; }

private:
    std::optional<Failure> AddFile(const std::string& file, const std::string& name);
    std::optional<Failure> AddArchive(const std::string& file, const std::string& name);
    std::optional<Failure> AddDatabase(const std::string& file, const std::string& name);

    std::set<std::string> mNames;
    std::size_t mMostRows;
    std::size_t mRows = 0;
    std::map<std::string, std::string> mJson;
};

} // namespace diagnosis::cases

#endif
