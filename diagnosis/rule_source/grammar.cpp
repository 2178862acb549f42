#include "diagnosis/rule_source/grammar.h"

#include <algorithm>
#include <cstring>

namespace diagnosis::rule_source {

namespace {

using Names = const std::string_view[];
using Words = ElementWords;
using Kids = const ChildWord[];

constexpr bool FIRST = true; // only the first one is read
constexpr bool ALL = false;

constexpr Words TEXT{};

// ---- What several parts share. ----

constexpr Names PARAM_ATTRIBUTES = {"id", "key", "type"};
constexpr Words PARAM{.attributes = PARAM_ATTRIBUTES, .neededAttributes = PARAM_ATTRIBUTES};
constexpr Kids PARAMS_KIDS = {{"param", &PARAM, ALL}};
constexpr Words PARAMS{.children = PARAMS_KIDS};
constexpr Kids PARAM_BLOCKS_KIDS = {{"params", &PARAMS, ALL}};
constexpr Words PARAM_BLOCKS{.children = PARAM_BLOCKS_KIDS};

constexpr Names TYPE_ATTRIBUTE = {"type"};
constexpr Names ID_ATTRIBUTE = {"id"};
constexpr Names ID_CHILD = {"ID"};

constexpr Kids TEST_KIDS = {{"id", &TEXT, FIRST}, {"value", &TEXT, FIRST}, {"commonPartParamId", &TEXT, FIRST}};
// A test names its parameter in a child with the word that is an attribute elsewhere.
constexpr Words TEST{.attributes = TYPE_ATTRIBUTE, .children = TEST_KIDS, .neededChildren = ID_ATTRIBUTE};
constexpr Kids TESTS_KIDS = {{"eq", &TEST, ALL}, {"gt", &TEST, ALL}, {"lt", &TEST, ALL}, {"ge", &TEST, ALL},
    {"le", &TEST, ALL}, {"ne", &TEST, ALL}, {"in", &TEST, ALL}};
constexpr Words TESTS{.children = TESTS_KIDS};
constexpr Kids ALTERNATIVE_KIDS = {{"and", &TESTS, FIRST}, {"eq", &TEST, ALL}, {"gt", &TEST, ALL}, {"lt", &TEST, ALL},
    {"ge", &TEST, ALL}, {"le", &TEST, ALL}, {"ne", &TEST, ALL}, {"in", &TEST, ALL}};
constexpr Names LOGIC_TYPES = {"single_logic", "multiple_logic"};
constexpr AttributeValues ALTERNATIVE_VALUES[] = {{"type", LOGIC_TYPES}};
constexpr Words ALTERNATIVE{.attributes = TYPE_ATTRIBUTE, .children = ALTERNATIVE_KIDS,
    .neededAttributes = TYPE_ATTRIBUTE, .values = ALTERNATIVE_VALUES};
constexpr Kids CONDITION_KIDS = {{"or", &ALTERNATIVE, ALL}};
constexpr Words CONDITION{.children = CONDITION_KIDS};

constexpr Names TIME_ATTRIBUTES = {"type", "period", "threshold"};
constexpr Words TIME{.attributes = TIME_ATTRIBUTES};

// ---- The tree file. ----

constexpr Kids EVENT_KIDS = {{"ID", &TEXT, FIRST}, {"Name", &TEXT, FIRST}, {"Value", &TEXT, FIRST},
    {"UserDefined", &TEXT, FIRST}, {"DetectMode", &TEXT, FIRST}};
constexpr Words LEAF_EVENT{.children = EVENT_KIDS, .neededChildren = ID_CHILD};

extern const Words GATE;
constexpr Kids INTERMEDIATE_KIDS = {{"ID", &TEXT, FIRST}, {"Name", &TEXT, FIRST}, {"Value", &TEXT, FIRST},
    {"UserDefined", &TEXT, FIRST}, {"DetectMode", &TEXT, FIRST}, {"Or-Gate", &GATE, FIRST}, {"And-Gate", &GATE, FIRST}};
constexpr Words INTERMEDIATE{.children = INTERMEDIATE_KIDS, .neededChildren = ID_CHILD};
constexpr Kids GATE_KIDS = {{"Intermediate-Event", &INTERMEDIATE, ALL}, {"Basic-Event", &LEAF_EVENT, ALL}};
// Any other name is an undeveloped event.
constexpr Words GATE{.children = GATE_KIDS, .others = &LEAF_EVENT};

constexpr Names TREE_ATTRIBUTES = {"id", "version", "type"};
constexpr Kids TREE_KIDS = {{"Intermediate-Event", &INTERMEDIATE, ALL}};
constexpr Names TOP_EVENT = {"Intermediate-Event"};
constexpr Words TREE{.attributes = TREE_ATTRIBUTES, .children = TREE_KIDS, .neededAttributes = TREE_ATTRIBUTES,
    .neededChildren = TOP_EVENT};
constexpr Words TREE_TAG{.others = &TREE};

// ---- Event rules. ----

constexpr Kids RULE_NAME_KIDS = {{"Rule-name", &TEXT, ALL}};
constexpr Words RULE_NAME{.children = RULE_NAME_KIDS};
constexpr Kids GROUP_KIDS = {{"Rule", &RULE_NAME, ALL}};
constexpr Words GROUP{.children = GROUP_KIDS};
constexpr Kids BINDING_ALTERNATIVE_KIDS = {{"Rule", &RULE_NAME, ALL}, {"and", &GROUP, FIRST}};
constexpr Names RULE_COUNTS = {"singleRule", "multipleRule"};
constexpr AttributeValues BINDING_ALTERNATIVE_VALUES[] = {{"type", RULE_COUNTS}};
constexpr Words BINDING_ALTERNATIVE{.attributes = TYPE_ATTRIBUTE, .children = BINDING_ALTERNATIVE_KIDS,
    .neededAttributes = TYPE_ATTRIBUTE, .values = BINDING_ALTERNATIVE_VALUES};
constexpr Kids BINDING_KIDS = {{"ID", &TEXT, FIRST}, {"or", &BINDING_ALTERNATIVE, ALL}};
constexpr Words BINDING{.children = BINDING_KIDS, .neededChildren = ID_CHILD};
constexpr Kids BINDINGS_KIDS = {{"Event", &BINDING, ALL}};
constexpr Words BINDINGS{.children = BINDINGS_KIDS};

// ---- Rules. ----

constexpr Names RULE_ATTRIBUTES = {
    "name", "type", "platform", "production", "blackProducts", "detectScene", "deviceType"};

constexpr Names NAME_ATTRIBUTE = {"name"};
constexpr Names WINDOW_TYPES = {"duration", "daily_peak", "latest"};
constexpr AttributeValues WINDOW_VALUES[] = {{"type", WINDOW_TYPES}};
constexpr Words WINDOW{.attributes = TIME_ATTRIBUTES, .neededAttributes = TYPE_ATTRIBUTE, .values = WINDOW_VALUES};
constexpr Names ALARM_ID_ATTRIBUTES = {"type", "Eventid_Min", "Eventid_Max", "BeginFlag"};
constexpr Kids ALARM_ID_KIDS = {{"time", &WINDOW, ALL}, {"params", &PARAMS, FIRST}, {"condition", &CONDITION, FIRST}};
constexpr Words ALARM_ID{.attributes = ALARM_ID_ATTRIBUTES, .children = ALARM_ID_KIDS};
constexpr Kids ALARM_RULE_KIDS = {{"alarmId", &ALARM_ID, ALL}};
constexpr Words ALARM_RULE{.attributes = RULE_ATTRIBUTES, .children = ALARM_RULE_KIDS,
    .neededAttributes = NAME_ATTRIBUTE};

constexpr Words DETECT_INFO{.attributes = ID_ATTRIBUTE};
constexpr Kids CODE_RULE_KIDS = {{"detectInfo", &DETECT_INFO, FIRST}, {"userDefinedInfo", &TEXT, FIRST}};
constexpr Names DETECT_INFO_CHILD = {"detectInfo"};
constexpr Words CODE_RULE{.attributes = RULE_ATTRIBUTES, .children = CODE_RULE_KIDS,
    .neededAttributes = NAME_ATTRIBUTE, .neededChildren = DETECT_INFO_CHILD};

constexpr Kids REFERENCE_KIDS = {{"commonPartDomain", &TEXT, FIRST}, {"commonPartName", &TEXT, FIRST}};
constexpr Words REFERENCE{.children = REFERENCE_KIDS};
constexpr Kids DATABASE_KIDS = {{"defDBDomain", &TEXT, FIRST}, {"defDBName", &TEXT, FIRST}, {"defDBNum", &TEXT, FIRST}};
constexpr Words DATABASE{.attributes = TYPE_ATTRIBUTE, .children = DATABASE_KIDS};
constexpr Names VALUE_ATTRIBUTE = {"value"};
constexpr Words BEGIN_FLAG{.attributes = VALUE_ATTRIBUTE};
constexpr Words PROPERTY{.attributes = ID_ATTRIBUTE, .neededAttributes = ID_ATTRIBUTE};
constexpr Kids NORMALIZATION_PARAM_KIDS = {{"defineNormalizationProp", &PROPERTY, ALL}};
constexpr Words NORMALIZATION_PARAM{.children = NORMALIZATION_PARAM_KIDS};
constexpr Kids TIME_PARAM_KIDS = {{"defineTimeProp", &PROPERTY, ALL}};
constexpr Words TIME_PARAM{.children = TIME_PARAM_KIDS};
constexpr Kids NORMALIZATION_KIDS = {
    {"normalizationParam", &NORMALIZATION_PARAM, FIRST}, {"timeParam", &TIME_PARAM, FIRST}};
constexpr Words NORMALIZATION{.children = NORMALIZATION_KIDS};
constexpr Kids SQL_ITEM_KIDS = {{"sql", &TEXT, FIRST}, {"time", &TIME, FIRST}, {"BeginFlag", &BEGIN_FLAG, FIRST},
    {"condition", &CONDITION, FIRST}, {"normalization", &NORMALIZATION, FIRST}};
constexpr Words SQL_ITEM{.children = SQL_ITEM_KIDS};
constexpr Kids SQL_CONDITION_KIDS = {{"SQLItem", &SQL_ITEM, FIRST}};
constexpr Words SQL_CONDITION{.attributes = TYPE_ATTRIBUTE, .children = SQL_CONDITION_KIDS};
constexpr Kids ANALYSIS_KIDS = {{"SQL_Condition", &SQL_CONDITION, FIRST}};
constexpr Words ANALYSIS{.attributes = TYPE_ATTRIBUTE, .children = ANALYSIS_KIDS};
constexpr Kids COMMAND_RULE_KIDS = {{"referenceCommonPart", &REFERENCE, FIRST}, {"referenceDefDB", &DATABASE, FIRST},
    {"queryReturnParam", &PARAM_BLOCKS, FIRST}, {"AnalysisMethod", &ANALYSIS, FIRST}};
constexpr Words COMMAND_RULE{.attributes = RULE_ATTRIBUTES, .children = COMMAND_RULE_KIDS,
    .neededAttributes = NAME_ATTRIBUTE};

constexpr Names NODE_INFO_ATTRIBUTES = {"type", "path", "param"};
constexpr Words NODE_INFO{.attributes = NODE_INFO_ATTRIBUTES};
constexpr Names EXPRESSION_ATTRIBUTES = {"type", "ret", "express"};
constexpr Words EXPRESSION{.attributes = EXPRESSION_ATTRIBUTES};
constexpr Kids NODE_RULE_KIDS = {{"nodeInfo", &NODE_INFO, ALL}, {"params", &PARAMS, FIRST},
    {"logicExpression", &EXPRESSION, FIRST}, {"condition", &CONDITION, FIRST}};
constexpr Words NODE_RULE{.attributes = RULE_ATTRIBUTES, .children = NODE_RULE_KIDS,
    .neededAttributes = NAME_ATTRIBUTE};

constexpr Kids RULE_KIDS = {{"alarmRule", &ALARM_RULE, ALL}, {"commandRule", &COMMAND_RULE, ALL},
    {"codeRule", &CODE_RULE, ALL}, {"nodeRule", &NODE_RULE, ALL}};
constexpr Words RULE{.children = RULE_KIDS};
constexpr Kids RULES_KIDS = {{"rule", &RULE, ALL}};
constexpr Words RULES{.children = RULES_KIDS};

// ---- Descriptions. ----

constexpr Names ENTRY_ATTRIBUTES = {"id", "extra"};
constexpr Words ENTRY{.attributes = ENTRY_ATTRIBUTES, .neededAttributes = ID_ATTRIBUTE};

constexpr Kids FAULTS_KIDS = {{"description", &ENTRY, ALL}};
constexpr Words FAULTS{.children = FAULTS_KIDS};
constexpr Kids FAULT_ITEM_KIDS = {{"ID", &TEXT, FIRST}, {"FaultDescriptions", &FAULTS, FIRST}};
constexpr Words FAULT_ITEM{.children = FAULT_ITEM_KIDS, .neededChildren = ID_CHILD};
constexpr Kids FAULT_ITEMS_KIDS = {{"Event", &FAULT_ITEM, ALL}};
constexpr Words FAULT_ITEMS{.children = FAULT_ITEMS_KIDS};

constexpr Kids SOLUTIONS_KIDS = {{"solution", &PROPERTY, ALL}};
constexpr Words SOLUTIONS{.children = SOLUTIONS_KIDS};
constexpr Kids SOLUTION_ITEM_KIDS = {{"ID", &TEXT, FIRST}, {"Solutions", &SOLUTIONS, FIRST}};
constexpr Words SOLUTION_ITEM{.children = SOLUTION_ITEM_KIDS, .neededChildren = ID_CHILD};
constexpr Kids SOLUTION_ITEMS_KIDS = {{"Event", &SOLUTION_ITEM, ALL}};
constexpr Words SOLUTION_ITEMS{.children = SOLUTION_ITEMS_KIDS};

constexpr Kids REPAIR_ITEM_KIDS = {{"ID", &TEXT, FIRST}, {"Descriptions", &FAULTS, FIRST}};
constexpr Words REPAIR_ITEM{.children = REPAIR_ITEM_KIDS, .neededChildren = ID_CHILD};
constexpr Kids REPAIR_ITEMS_KIDS = {{"Event", &REPAIR_ITEM, ALL}};
constexpr Words REPAIR_ITEMS{.children = REPAIR_ITEMS_KIDS};

// ---- Common part. ----

constexpr Kids SET_KIDS = {{"value", &TEXT, ALL}};
// Every element after the first value counts as a value, whatever its name.
constexpr Words SET{.children = SET_KIDS, .others = &TEXT};
constexpr Kids LIMIT_TEST_KIDS = {{"id", &TEXT, FIRST}, {"value", &TEXT, FIRST}, {"set", &SET, FIRST}};
constexpr Words LIMIT_TEST{.children = LIMIT_TEST_KIDS, .neededChildren = ID_ATTRIBUTE};
constexpr Kids LIMIT_TESTS_KIDS = {{"eq", &LIMIT_TEST, ALL}, {"gt", &LIMIT_TEST, ALL}, {"lt", &LIMIT_TEST, ALL},
    {"ge", &LIMIT_TEST, ALL}, {"le", &LIMIT_TEST, ALL}, {"ne", &LIMIT_TEST, ALL}, {"in", &LIMIT_TEST, ALL}};
constexpr Words LIMIT_TESTS{
    .attributes = TYPE_ATTRIBUTE, .children = LIMIT_TESTS_KIDS, .neededAttributes = TYPE_ATTRIBUTE};
constexpr Kids LIMIT_CONDITION_KIDS = {{"or", &LIMIT_TESTS, ALL}};
constexpr Words LIMIT_CONDITION{.children = LIMIT_CONDITION_KIDS};
constexpr Names THRESHOLD_ATTRIBUTES = {"id", "value"};
constexpr Words THRESHOLD{.attributes = THRESHOLD_ATTRIBUTES, .neededAttributes = THRESHOLD_ATTRIBUTES};
constexpr Kids THRESHOLDS_KIDS = {{"threshold", &THRESHOLD, ALL}};
constexpr Words THRESHOLDS{.children = THRESHOLDS_KIDS};
constexpr Kids THRESHOLD_ITEM_KIDS = {{"condition", &LIMIT_CONDITION, FIRST}, {"thresholds", &THRESHOLDS, FIRST}};
constexpr Words THRESHOLD_ITEM{.attributes = TYPE_ATTRIBUTE, .children = THRESHOLD_ITEM_KIDS};
constexpr Kids MAPPING_KIDS = {{"ThresholdItem", &THRESHOLD_ITEM, ALL}};
constexpr Words MAPPING{.children = MAPPING_KIDS};
constexpr Names DATA_ITEM_ATTRIBUTES = {"type", "Eventid_Min", "Eventid_Max"};
constexpr Words DATA_ITEM{.attributes = DATA_ITEM_ATTRIBUTES, .children = PARAM_BLOCKS_KIDS};
constexpr Kids DATA_KIDS = {{"alarmId", &DATA_ITEM, ALL}};
constexpr Words DATA{.children = DATA_KIDS};
constexpr Names BEAN_ATTRIBUTES = {"name", "platform", "type"};
constexpr Kids THRESHOLD_BEAN_KIDS = {{"SystemParamTable", &PARAM_BLOCKS, FIRST},
    {"ThresholdParamTable", &PARAM_BLOCKS, FIRST}, {"ThresholdMappingTable", &MAPPING, FIRST},
    {"retrieveLumbraData", &DATA, FIRST}};
constexpr Words THRESHOLD_BEAN{.attributes = BEAN_ATTRIBUTES, .children = THRESHOLD_BEAN_KIDS};

constexpr Kids DECOMPRESSION_KIDS = {{"type", &TEXT, ALL}};
constexpr Words DECOMPRESSION{.children = DECOMPRESSION_KIDS};
constexpr Names DB_PATH_ATTRIBUTES = {"decompression", "type", "value"};
constexpr Kids DB_PATH_KIDS = {{"decompressionType", &DECOMPRESSION, FIRST}};
constexpr Words DB_PATH{
    .attributes = DB_PATH_ATTRIBUTES, .children = DB_PATH_KIDS, .neededAttributes = DB_PATH_ATTRIBUTES};
constexpr Kids DB_PATHS_KIDS = {{"dbPath", &DB_PATH, ALL}};
constexpr Words DB_PATHS{.children = DB_PATHS_KIDS};
constexpr Words DB_NAME{.attributes = NAME_ATTRIBUTE};
constexpr Names TABLE_ATTRIBUTES = {"tableName"};
constexpr Kids TABLE_KIDS = {{"sql", &TEXT, FIRST}};
constexpr Words TABLE{.attributes = TABLE_ATTRIBUTES, .children = TABLE_KIDS, .neededAttributes = TABLE_ATTRIBUTES};
constexpr Kids TABLES_KIDS = {{"createNewTable", &TABLE, ALL}};
constexpr Words TABLES{.children = TABLES_KIDS};
constexpr Kids TABLE_BEAN_KIDS = {
    {"dbPaths", &DB_PATHS, FIRST}, {"dbName", &DB_NAME, FIRST}, {"createTables", &TABLES, FIRST}};
constexpr Words TABLE_BEAN{.attributes = BEAN_ATTRIBUTES, .children = TABLE_BEAN_KIDS};

constexpr Kids COMMON_PART_KIDS = {{"thresholdsOrLumbraData", &THRESHOLD_BEAN, ALL}, {"defDBTable", &TABLE_BEAN, ALL}};
constexpr Words COMMON_PART{.children = COMMON_PART_KIDS};
constexpr Kids COMMON_PARTS_KIDS = {{"commonPart", &COMMON_PART, ALL}};
constexpr Words COMMON_PARTS{.children = COMMON_PARTS_KIDS};

constexpr Kids SECTION_WORDS = {{"EventRules", &BINDINGS, FIRST}, {"RuleList", &RULES, FIRST},
    {"EventFaultDescriptions", &FAULT_ITEMS, FIRST}, {"EventSolutions", &SOLUTION_ITEMS, FIRST},
    {"RepairDescriptions", &REPAIR_ITEMS, FIRST}, {"RuleCommonPart", &COMMON_PARTS, FIRST}};

} // namespace

namespace {

// Most names that are held against each other differ in their first letter.
bool IsSame(const char* name, std::string_view word)
{
    return name[0] == word[0] && std::strncmp(name, word.data(), word.size()) == 0 && name[word.size()] == '\0';
}

bool Holds(std::span<const std::string_view> names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

const ChildWord* ElementWords::FindChild(const char* name) const
{
    const auto found =
        std::find_if(children.begin(), children.end(), [name](const ChildWord& word) { return IsSame(name, word.name); });
    return found == children.end() ? nullptr : &*found;
}

bool ElementWords::HasAttribute(const char* name) const
{
    return std::any_of(attributes.begin(), attributes.end(), [name](std::string_view word) { return IsSame(name, word); });
}

bool ElementWords::NeedsAttribute(std::string_view name) const
{
    return Holds(neededAttributes, name);
}

bool ElementWords::NeedsChild(std::string_view name) const
{
    return Holds(neededChildren, name);
}

std::span<const std::string_view> ElementWords::ValuesOf(std::string_view attribute) const
{
    for (const AttributeValues& known : values) {
        if (known.attribute == attribute) {
            return known.values;
        }
    }
    return {};
}

const ElementWords& WordsOfTreeTag()
{
    return TREE_TAG;
}

const ElementWords* WordsOfSectionTag(std::string_view section)
{
    for (const ChildWord& word : SECTION_WORDS) {
        if (section == word.name) {
            return word.words;
        }
    }
    return nullptr;
}

} // namespace diagnosis::rule_source
