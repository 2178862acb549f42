// A rule file put together from the elements, words and numbers that the loader knows, and from nasty ones, run on a
// device: gets behind the XML, where plain bytes rarely do.

#include "fuzz/choices.h"
#include "fuzz/fuzz_device.h"

namespace {

constexpr std::array<const char*, 8> EVENTS = {"A", "B", "C", "D", "E", "F", "G", "H"};
constexpr std::array<const char*, 6> RULE_NAMES = {"r0", "r1", "r2", "r3", "", "r9"};
constexpr std::array<const char*, 16> NUMBERS = {"1",
                                                 "0",
                                                 "2",
                                                 "-1",
                                                 "30",
                                                 "2147483647",
                                                 "2147483648",
                                                 "-2147483648",
                                                 "9223372036854775807",
                                                 "18446744073709551616",
                                                 "1e3",
                                                 "0x10",
                                                 " 7",
                                                 "x",
                                                 "",
                                                 "1.5"};
constexpr std::array<const char*, 10> IDS = {"931000001",  "931000003", "921000001", "0",           "-5",
                                             "2147483647", "",          "934001002", "99999999999", "a"};
constexpr std::array<const char*, 5> WINDOWS = {"duration", "latest", "daily_peak", "", "other"};
constexpr std::array<const char*, 5> FLAGS = {"1", "2", "3", "4", ""};
constexpr std::array<const char*, 7> TYPES = {"int", "long", "float", "double", "string", "", "bool"};
constexpr std::array<const char*, 7> COMPARISONS = {"gt", "ge", "lt", "le", "eq", "ne", "in"};
constexpr std::array<const char*, 4> LOGICS = {"single_logic", "multiple_logic", "", "other"};
constexpr std::array<const char*, 5> SOURCES = {"static", "dynamic", "systemParam", "", "other"};
constexpr std::array<const char*, 6> KEYS = {"N", "S", "COUNT", "v", "", "a.b"};
constexpr std::array<const char*, 4> SCENES = {"1", "2,1", "", "3"};
constexpr std::array<const char*, 8> EXPRESSIONS = {"N / v", "(N + v) * 2 - S", "1/0", "((((N", "",
                                                    "  ",    "-N--v",           "N@v"};
constexpr std::array<const char*, 10> STATEMENTS = {"select count(*) as N from EV",
                                                    "select N from EV where S = 'x'",
                                                    "select 1",
                                                    "",
                                                    "not sql",
                                                    "select N, v from EV, EV",
                                                    "delete from EV",
                                                    "select * from rows",
                                                    "select abs(-9223372036854775808)",
                                                    "select max(v), count(*) from rows where t like '%'"};
constexpr std::array<const char*, 5> PATHS = {"/sys/x", "/sys/y", "/sys/none", "../x", "/"};
constexpr std::array<const char*, 4> PATTERNS = {".*found.*", "(", "", ".*"};

class RuleFile {
public:
    explicit RuleFile(Choices& choices) : mChoices(choices) {}

    std::string Make()
    {
        return "<r><EventRules><t>" + Repeat(6, [&] { return EventRule(); }) +
               "</t></EventRules><RuleCommonPart><t><commonPart>" +
               Repeat(3, [&] { return mChoices.Below(2) == 0 ? DerivedTable() : FoundTable(); }) +
               "</commonPart></t></RuleCommonPart><RuleList><t><rule>" + Repeat(5, [&] { return Rule(); }) +
               "</rule></t></RuleList>" + RepairList() + "</r>";
    }

private:
    template <typename Part>
    std::string Repeat(std::size_t most, Part part)
    {
        std::string text;
        for (std::size_t count = mChoices.Below(most + 1); count > 0 && mChoices.AreLeft(); --count) {
            text += part();
        }
        return text;
    }

    static std::string Attribute(const std::string& name, const std::string& value)
    {
        return " " + name + "='" + value + "'";
    }
    static std::string Element(const std::string& name, const std::string& text)
    {
        return "<" + name + ">" + text + "</" + name + ">";
    }

    std::string RuleName() { return Element("Rule", Element("Rule-name", mChoices.Of(RULE_NAMES))); }

    std::string EventRule()
    {
        const bool isGroup = mChoices.Below(2) != 0;
        const std::string names = Repeat(4, [&] { return RuleName(); });
        return Element("Event", Element("ID", mChoices.Of(EVENTS)) + "<or" +
                                    Attribute("type", isGroup ? "multipleRule" : "singleRule") + ">" +
                                    (isGroup ? Element("and", names) : names) + "</or>");
    }

    std::string Params()
    {
        return Element("params", Repeat(4, [&] {
                           const std::string key = mChoices.Of(KEYS);
                           return "<param" + Attribute("id", key) + Attribute("key", key) +
                                  Attribute("type", mChoices.Of(TYPES)) + "/>";
                       }));
    }

    std::string Test()
    {
        const std::string name = mChoices.Of(COMPARISONS);
        const std::string value =
            name == "in"             ? Element("set", Repeat(3, [&] { return Element("value", mChoices.Of(NUMBERS)); }))
            : mChoices.Below(3) == 0 ? Element("commonPartParamId", mChoices.Of(KEYS))
                                     : Element("value", mChoices.Of(NUMBERS));
        return "<" + name + Attribute("type", mChoices.Of(SOURCES)) + ">" + Element("id", mChoices.Of(KEYS)) + value +
               "</" + name + ">";
    }

    std::string Condition()
    {
        return Element("condition", Repeat(3, [&] {
                           const std::string tests = Repeat(3, [&] { return Test(); });
                           return "<or" + Attribute("type", mChoices.Of(LOGICS)) + ">" +
                                  (mChoices.Below(2) == 0 ? tests : Element("and", tests)) + "</or>";
                       }));
    }

    std::string Window()
    {
        return "<time" + Attribute("type", mChoices.Of(WINDOWS)) + Attribute("period", mChoices.Of(NUMBERS)) +
               Attribute("threshold", mChoices.Of(NUMBERS)) + "/>";
    }

    std::string IdRange()
    {
        const bool isSingle = mChoices.Below(2) == 0;
        return (isSingle ? "" : Attribute("Eventid_Min", mChoices.Of(IDS))) +
               Attribute("Eventid_Max", mChoices.Of(IDS));
    }

    std::string Alarm()
    {
        return Repeat(3, [&] {
            return "<alarmId" + (mChoices.Below(2) == 0 ? "" : Attribute("type", "param_eventid")) + IdRange() +
                   Attribute("BeginFlag", mChoices.Of(FLAGS)) + ">" + Repeat(3, [&] { return Window(); }) + Params() +
                   Condition() + "</alarmId>";
        });
    }

    std::string Command()
    {
        const bool isFound = mChoices.Below(2) != 0;
        const std::string reference =
            isFound ? "<referenceDefDB" + Attribute("type", mChoices.Below(2) == 0 ? "singleDB" : "counted") +
                          "><defDBName>T1</defDBName>" + Element("defDBNum", mChoices.Of(NUMBERS)) + "</referenceDefDB>"
                    : Element("referenceCommonPart", Element("commonPartName", mChoices.Below(2) == 0 ? "EV" : "none"));
        const std::string kind = isFound                  ? Attribute("type", "defDBSql")
                                 : mChoices.Below(3) == 0 ? Attribute("type", "normalization")
                                                          : "";
        return reference + Element("queryReturnParam", Params()) + "<AnalysisMethod type='SQL'><SQL_Condition" + kind +
               ">" +
               Repeat(2,
                      [&] {
                          const std::string time = Window();
                          return Element(
                              "SQLItem",
                              Element("sql", mChoices.Of(STATEMENTS)) + time + "<BeginFlag" +
                                  Attribute("value", mChoices.Of(FLAGS)) + "/>" + Condition() +
                                  Element("normalization",
                                          Element("normalizationParam", "<defineNormalizationProp id='N'/>") +
                                              Element("timeParam", "<defineTimeProp id='v'/><defineTimeProp" +
                                                                       Attribute("id", mChoices.Of(KEYS)) + "/>")));
                      }) +
               "</SQL_Condition></AnalysisMethod>";
    }

    std::string Node()
    {
        return Repeat(3,
                      [&] {
                          return "<nodeInfo" + Attribute("param", mChoices.Of(KEYS)) +
                                 Attribute("path", mChoices.Of(PATHS)) + "/>";
                      }) +
               Params() + "<logicExpression" + Attribute("type", mChoices.Of(TYPES)) +
               Attribute("ret", mChoices.Of(KEYS)) + Attribute("express", mChoices.Of(EXPRESSIONS)) + "/>" +
               Condition();
    }

    std::string Rule()
    {
        const std::string head =
            Attribute("name", mChoices.Of(RULE_NAMES)) + Attribute("detectScene", mChoices.Of(SCENES));
        switch (mChoices.Below(4)) {
        case 0:
            return "<alarmRule" + head + ">" + Alarm() + "</alarmRule>";
        case 1:
            return "<commandRule" + head + ">" + Command() + "</commandRule>";
        case 2:
            return "<nodeRule" + head + ">" + Node() + "</nodeRule>";
        default:
            return "<codeRule" + head + "><detectInfo id='CODE'/></codeRule>";
        }
    }

    std::string DerivedTable()
    {
        return "<thresholdsOrLumbraData name='EV'>" +
               Element("retrieveLumbraData",
                       Repeat(2, [&] { return "<alarmId" + IdRange() + ">" + Params() + "</alarmId>"; })) +
               "</thresholdsOrLumbraData>";
    }

    std::string FoundTable()
    {
        return "<defDBTable name='T1'><dbPaths><dbPath decompression='true' type='folder'" +
               Attribute("value", "/data") + "/></dbPaths><dbName" + Attribute("name", mChoices.Of(PATTERNS)) +
               "/></defDBTable>";
    }

    std::string RepairList()
    {
        return Element("RepairDescriptions",
                       Element("t", Element("Event", Element("ID", mChoices.Of(EVENTS)) +
                                                         Element("Descriptions", "<description id='R'/>"))));
    }

    Choices& mChoices;
};

constexpr char ROWS[] =
    "INSERT INTO event_info VALUES (1, 931000001, '{\"N\": 4, \"S\": \"x\", \"COUNT\": 2}', 1),"
    "(2, 931000001, '{\"N\": \"5\", \"v\": 2.5}', 1), (3, 931000003, 'no json', 1), (4, 921000001, '{\"COUNT\": 7}', "
    "1),"
    "(5, 934001002, '{}', 9), (6, 931000003, null, null);"
    "INSERT INTO event_info_flow VALUES (1, 1, 1699990000), (2, 2, 1699990001), (3, 3, 1699900000), (4, 4, 1699990003),"
    "(5, 5, 1799990000), (6, 6, null);";

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDevice device;
    static const bool isLogMade = (device.MakeEventLog(ROWS), true);
    Choices choices(data, size);
    device.WriteRules(RuleFile(choices).Make());
    device.Detect();
    return isLogMade ? 0 : -1;
}
