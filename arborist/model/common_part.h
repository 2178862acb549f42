#ifndef ARBORIST_MODEL_COMMON_PART_H
#define ARBORIST_MODEL_COMMON_PART_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "arborist/frame/evidence_words.h"
#include "arborist/model/condition.h"

/// System parameters, the thresholds that depend on them, and the events from which a derived table is built.
///
/// The `value` of a parameter is not read from the file: CommonPart::SetThreshold writes it before the first rule runs.
class ThresholdOrLumbraBean {
public:
    /// The value that one threshold gets when its item applies.
    class Threshold {
    public:
        /// Id of a parameter in the bean's threshold map.
        const std::string& GetId() const { return id; }
        void SetId(const std::string& text) { id = text; }
        const std::string& GetValue() const { return value; }
        void SetValue(const std::string& text) { value = text; }

    private:
        std::string id;
        std::string value;
    };

    /// Sets thresholds if every condition on the system parameters is met.
    class ThresholdItem {
    public:
        using LogicList = std::vector<std::shared_ptr<Logic>>;
        using ThresholdList = std::vector<std::shared_ptr<Threshold>>;

        const std::string& GetType() const { return type; }
        void SetType(const std::string& text) { type = text; }
        /// Part of the record as rule code knows it; no parser fills it.
        void SetConditionType(const std::string& text) { conditionType = text; }
        const LogicList& GetConditionList() const { return conditionList; }
        void SetConditionList(const LogicList& conditions) { conditionList = conditions; }
        const ThresholdList& GetThresholdList() const { return thresholdList; }
        void SetThresholdList(const ThresholdList& thresholds) { thresholdList = thresholds; }

    private:
        std::string type;
        std::string conditionType;
        LogicList conditionList;
        ThresholdList thresholdList;
    };

    /// A range of event ids to fetch. The parameters of a bean's first item name the columns of its table.
    class LumbraDataItem {
    public:
        static constexpr char TAG[] = "LumbraDataItem";

        const std::string& GetType() const { return type; }
        void SetType(const std::string& text) { type = text; }
        /// The bounds as numbers: 0 for the empty text and for a text that is no number (which logs an error).
        std::int32_t GetAlarmIdMin() const { return ParseAlarmIdToInt(alarmIdMin); }
        std::int32_t GetAlarmIdMax() const { return ParseAlarmIdToInt(alarmIdMax); }
        void SetAlarmIdMin(const std::string& text) { alarmIdMin = text; }
        void SetAlarmIdMax(const std::string& text) { alarmIdMax = text; }
        const ParamMap& GetParamMap() const { return paramMap; }
        void SetParamMap(const ParamMap& params) { paramMap = params; }

    private:
        static std::int32_t ParseAlarmIdToInt(const std::string& text);

        std::string type;
        std::string alarmIdMin;
        std::string alarmIdMax;
        ParamMap paramMap;
    };

    using ThresholdItemList = std::vector<std::shared_ptr<ThresholdItem>>;
    using LumbraDataList = std::vector<std::shared_ptr<LumbraDataItem>>;

    static constexpr char LUMBRA_PLUS_DATA[] = "lumbraPlusData";

    /// What the last detection made of the bean's table.
    enum class TableState {
        NOT_BUILT, ///< it could not be created; no event was selected for it
        INCOMPLETE, ///< rows are missing, or values of rows
        WHOLE, ///< it has a row for every selected event; also the state before the first attempt
    };

    /// Name of the derived table, by which rules refer to this bean.
    const std::string& GetName() const { return name; }
    void SetName(const std::string& text) { name = text; }
    const std::string& GetPlatform() const { return platform; }
    void SetPlatform(const std::string& text) { platform = text; }
    /// LUMBRA_PLUS_DATA: the table gets one fixed row and no events.
    const std::string& GetType() const { return type; }
    void SetType(const std::string& text) { type = text; }
    /// Whether there is a derived table for the bean, which is filled with events of the log.
    bool TakesEvents() const { return !GetLumbraDataList().empty() && GetType() != LUMBRA_PLUS_DATA; }
    const ParamMap& GetSystemParamMap() const { return systemParamMap; }
    void SetSystemParaMap(const ParamMap& params) { systemParamMap = params; }
    const ParamMap& GetThresholdMap() const { return thresholdMap; }
    void SetThresholdMap(const ParamMap& params) { thresholdMap = params; }
    const ThresholdItemList& GetThresholdItemList() const { return thresholdItemList; }
    void SetThresholdItemList(const ThresholdItemList& items) { thresholdItemList = items; }
    const LumbraDataList& GetLumbraDataList() const { return lumbraDataList; }
    void SetLumbraDataList(const LumbraDataList& items) { lumbraDataList = items; }
    /// Line of the element in the rule file, from 1; 0 if it is not known.
    int GetLine() const { return line; }
    void SetLine(int number) { line = number; }
    TableState GetTableState() const { return tableState; }
    void SetTableState(TableState state) { tableState = state; }

private:
    std::string name;
    std::string platform;
    std::string type;
    ParamMap systemParamMap;
    ParamMap thresholdMap;
    ThresholdItemList thresholdItemList;
    LumbraDataList lumbraDataList;
    int line = 0;
    TableState tableState = TableState::WHOLE;
};

/// External database files of one kind, and the SQL to run on the copy of each.
class DefDbTableBean {
public:
    /// A directory to search.
    class DbPath {
    public:
        DbPath() = default;
        virtual ~DbPath() = default;

        const std::string& GetPathValue() const { return pathValue; }
        void SetPathValue(const std::string& text) { pathValue = text; }
        /// Read by nothing: the path of a file alone decides whether it is unpacked.
        bool IsDecompress() const { return decompress; }
        void SetDecompress(bool isDecompress) { decompress = isDecompress; }
        const std::string& GetType() const { return type; }
        void SetType(const std::string& text) { type = text; }
        /// Read by nothing, either.
        const std::vector<std::string>& GetDecompressTypeList() const { return decompressTypeList; }
        void SetDecompressTypeList(const std::vector<std::string>& types) { decompressTypeList = types; }

    private:
        std::string pathValue;
        bool decompress = false;
        std::string type;
        std::vector<std::string> decompressTypeList;
    };

    /// Statements, divided by ";", to run on each copy.
    class CreateTable {
    public:
        /// Names the statements in log lines; nothing else reads it.
        const std::string& GetTableName() const { return tableName; }
        void SetTableName(const std::string& text) { tableName = text; }
        const std::string& GetSql() const { return sql; }
        void SetSql(const std::string& text) { sql = text; }

    private:
        std::string tableName;
        std::string sql;
    };

    using DbPathList = std::vector<std::shared_ptr<DbPath>>;
    using CreateTableList = std::vector<std::shared_ptr<CreateTable>>;

    const std::string& GetName() const { return name; }
    void SetName(const std::string& text) { name = text; }
    const std::string& GetPlatform() const { return platform; }
    void SetPlatform(const std::string& text) { platform = text; }
    const std::string& GetType() const { return type; }
    void SetType(const std::string& text) { type = text; }
    const DbPathList& GetDbPathList() const { return dbPathList; }
    void SetDbPathList(const DbPathList& paths) { dbPathList = paths; }
    /// A regular expression (ECMAScript) that must match the whole path of a file, written in lower case.
    const std::string& GetDbName() const { return dbName; }
    void SetDbName(const std::string& text) { dbName = text; }
    const CreateTableList& GetCreateTableList() const { return createTableList; }
    void SetCreateTableList(const CreateTableList& tables) { createTableList = tables; }
    /// Line of the element in the rule file, from 1; 0 if it is not known.
    int GetLine() const { return line; }
    void SetLine(int number) { line = number; }
    /// Paths of the copies that were made, which rules query. Written while a detection is prepared.
    const std::vector<std::string>& GetCopyDbFileList() const { return copyDbFileList; }
    void SetCopyDbFileList(const std::vector<std::string>& files) { copyDbFileList = files; }
    /// Why the last attempt to copy made no copy, and the folder that it searched; empty if there is none to search.
    Evidence::NoCopy GetNoCopy() const { return noCopy; }
    const std::string& GetSearchedFolder() const { return searchedFolder; }
    void SetNoCopy(Evidence::NoCopy cause, const std::string& folder)
    {
        noCopy = cause;
        searchedFolder = folder;
    }
    /// Whether a file that matched could not be copied or unpacked, and whether the SQL of the bean failed on a copy.
    bool LacksCopies() const { return lacksCopies; }
    void SetLacksCopies(bool does) { lacksCopies = does; }
    bool LacksTables() const { return lacksTables; }
    void SetLacksTables(bool does) { lacksTables = does; }

private:
    std::string name;
    std::string platform;
    std::string type;
    DbPathList dbPathList;
    std::string dbName;
    CreateTableList createTableList;
    int line = 0;
    std::vector<std::string> copyDbFileList;
    Evidence::NoCopy noCopy = Evidence::NoCopy::NONE;
    std::string searchedFolder;
    bool lacksCopies = false;
    bool lacksTables = false;
};

/// The data that the rules of one tree tag share. SetThreshold chooses thresholds by the device's attributes.
///
/// Not thread-safe: SetThreshold must return before any rule is evaluated; from then on the records are only read.
class CommonPart {
public:
    /// All entries of one tree tag, in file order.
    class CombineCommonPart {
    public:
        using ThresholdLumbraList = std::vector<std::shared_ptr<ThresholdOrLumbraBean>>;
        using DefDbTableCommonList = std::vector<std::shared_ptr<DefDbTableBean>>;

        const ThresholdLumbraList& GetThresholdLumbraList() const { return thresholdLumbraList; }
        void SetThresholdLumbraList(ThresholdLumbraList beans) { thresholdLumbraList = std::move(beans); }
        const DefDbTableCommonList& GetDefDbTableCommonList() const { return defDbTableCommonList; }
        void SetDefDbTableCommonList(DefDbTableCommonList beans) { defDbTableCommonList = std::move(beans); }

    private:
        ThresholdLumbraList thresholdLumbraList;
        DefDbTableCommonList defDbTableCommonList;
    };

    static constexpr char TAG[] = "CommonPart";
    // Keys of the system parameters that the device's attributes fill.
    static constexpr std::string_view CPU_NAME = "CPU_NAME";
    static constexpr std::string_view RAM_SIZE = "RAM_SIZE";
    static constexpr std::string_view RESOLUTION = "RESOLUTION";
    static constexpr std::string_view BATTERY_DESIGN = "BATTFULL_DESIGN";
    static constexpr std::string_view LOGIC_TYPE_EQ = "eq";
    static constexpr std::string_view LOGIC_TYPE_IN = "in";
    /// The answer of a look-up that finds nothing.
    static constexpr char FLAVOR[] = "";

    std::shared_ptr<CombineCommonPart> GetCombineCommon() const { return mCombineCommon; }
    void SetCombineCommon(std::shared_ptr<CombineCommonPart> block) { mCombineCommon = std::move(block); }

    /// False if the derived table of `beanName`, or one whose name occurs in `sql`, lacks rows: a rule's SQL may read
    /// any table.
    bool AreTablesWhole(const std::string& beanName, const std::string& sql) const;

    /// True if a threshold bean has this name; always false for the empty name.
    bool IsHasThredCommonPart(const std::string& name) const;

    /// Returns the value of a parameter of the first bean with that name; empty if the bean, the parameter or the value
    /// is missing.
    std::string GetSystemValue(const std::string& paramId, const std::string& beanName) const;
    std::string GetThresholdValue(const std::string& paramId, const std::string& beanName) const;

    /// Returns a copy of the first table bean with that name; nothing for the empty or an unknown name.
    std::optional<DefDbTableBean> GetDefDbCommonPart(const std::string& name) const;

    /// True if `value` equals one of `values`, case included.
    bool IsCheckSet(const std::string& value, const std::vector<std::string>& values) const;

    /// Sets the system parameters of every bean, then its thresholds, item by item: if two items apply, the later wins.
    /// Changes nothing if one of the four attributes is empty.
    void SetThreshold(const std::string& cpuName, const std::string& ramSize, const std::string& resolution,
        const std::string& batteryCapacity);

private:
    std::shared_ptr<ThresholdOrLumbraBean> FindThresholdBean(const std::string& name) const;

    std::shared_ptr<CombineCommonPart> mCombineCommon;
};

#endif
