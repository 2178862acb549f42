#include "fuzz/fuzz_device.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include <sqlite3.h>

#include "arborist/arborist.h"
#include "arborist/frame/detection_observer.h"
#include "arborist/frame/settings.h"
#include "arborist/utilities/device_paths.h"

namespace {

constexpr char TREES[] = R"(<r version='1'><t><T id='T' version='1' type='t'>
<Intermediate-Event><ID>T</ID><Or-Gate>
 <Basic-Event><ID>A</ID></Basic-Event><Basic-Event><ID>B</ID></Basic-Event>
 <Intermediate-Event><ID>G</ID><And-Gate>
  <Basic-Event><ID>C</ID></Basic-Event><Basic-Event><ID>D</ID></Basic-Event></And-Gate></Intermediate-Event>
 <Intermediate-Event><ID>I</ID><And-Gate>
  <Basic-Event><ID>E</ID></Basic-Event><Basic-Event><ID>F</ID></Basic-Event></And-Gate></Intermediate-Event>
 <Undeveloped-Event><ID>H</ID></Undeveloped-Event>
</Or-Gate></Intermediate-Event></T></t></r>)";

constexpr char RULES[] = R"(<r>
<EventRules><t>
<Event><ID>A</ID><or type='singleRule'><Rule><Rule-name>plain</Rule-name></Rule></or></Event>
<Event><ID>B</ID><or type='singleRule'><Rule><Rule-name>tests</Rule-name></Rule></or></Event>
<Event><ID>C</ID><or type='singleRule'><Rule><Rule-name>weights</Rule-name></Rule></or></Event>
<Event><ID>D</ID><or type='multipleRule'><and><Rule><Rule-name>sums</Rule-name></Rule>
 <Rule><Rule-name>texts</Rule-name></Rule></and></or></Event>
<Event><ID>E</ID><or type='singleRule'><Rule><Rule-name>found</Rule-name></Rule></or></Event>
<Event><ID>F</ID><or type='singleRule'><Rule><Rule-name>counted</Rule-name></Rule></or></Event>
<Event><ID>H</ID><or type='singleRule'><Rule><Rule-name>node</Rule-name></Rule>
 <Rule><Rule-name>code</Rule-name></Rule></or></Event>
</t></EventRules>
<RuleCommonPart><t><commonPart>
<thresholdsOrLumbraData name='EV'><retrieveLumbraData>
 <alarmId Eventid_Min='931000001' Eventid_Max='931000009'><params>
  <param id='1' key='N' type='int'/><param id='2' key='L' type='long'/><param id='3' key='F' type='float'/>
  <param id='4' key='D' type='double'/><param id='5' key='S' type='string'/><param id='6' key='COUNT' type='int'/>
 </params></alarmId></retrieveLumbraData></thresholdsOrLumbraData>
<defDBTable name='FOUND'><dbPaths><dbPath decompression='true' type='folder' value='/data'/></dbPaths>
 <dbName name='.*found.*'/>
 <createTables><createNewTable tableName='made'>
  <sql>CREATE TABLE IF NOT EXISTS made AS SELECT count(*) AS n FROM rows</sql></createNewTable></createTables>
</defDBTable>
</commonPart></t></RuleCommonPart>
<RuleList><t><rule>
<alarmRule name='plain' detectScene='1'>
 <alarmId Eventid_Min='931000001' Eventid_Max='931000009' BeginFlag='1'>
  <time type='duration' period='30' threshold='2'/><time type='daily_peak' period='28' threshold='2'/></alarmId>
</alarmRule>
<alarmRule name='tests' detectScene='1'>
 <alarmId type='param_eventid' Eventid_Min='931000001' Eventid_Max='931000009' BeginFlag='2'>
  <time type='latest' period='30' threshold='2'/>
  <params><param id='n' key='N' type='int'/><param id='s' key='S' type='string'/><param id='f' key='F' type='double'/>
  </params>
  <condition><or type='single_logic'><gt><id>n</id><value>3</value></gt></or>
   <or type='multiple_logic'><and><eq><id>s</id><value>x</value></eq><le><id>f</id><value>2.5</value></le></and></or>
  </condition></alarmId>
</alarmRule>
<alarmRule name='weights' detectScene='1'>
 <alarmId Eventid_Min='921000001' Eventid_Max='921000009' BeginFlag='4'>
  <time type='duration' period='30' threshold='5'/></alarmId>
</alarmRule>
<commandRule name='sums' detectScene='1'>
 <referenceCommonPart><commonPartName>EV</commonPartName></referenceCommonPart>
 <queryReturnParam><params><param id='1' key='a' type='int'/><param id='2' key='b' type='double'/></params>
 </queryReturnParam>
 <AnalysisMethod type='SQL'><SQL_Condition><SQLItem>
  <sql>select sum(N) as a, max(D) as b from EV where L >= 0</sql>
  <time type='duration' period='30' threshold='0'/><BeginFlag value='1'/>
  <condition><or type='multiple_logic'><and><ge type='static'><id>1</id><value>1</value></ge>
   <lt type='static'><id>2</id><value>9.5</value></lt></and></or></condition>
 </SQLItem></SQL_Condition></AnalysisMethod>
</commandRule>
<commandRule name='texts' detectScene='1'>
 <referenceCommonPart><commonPartName>EV</commonPartName></referenceCommonPart>
 <queryReturnParam><params><param id='1' key='s' type='string'/></params></queryReturnParam>
 <AnalysisMethod type='SQL'><SQL_Condition><SQLItem>
  <sql>select S as s from EV where F is not null order by COUNT limit 1</sql>
  <time type='duration' period='30' threshold='0'/><BeginFlag value='3'/>
  <condition><or type='single_logic'><ne type='static'><id>1</id><value>x</value></ne></or></condition>
 </SQLItem></SQL_Condition></AnalysisMethod>
</commandRule>
<commandRule name='found' detectScene='1'>
 <referenceDefDB type='singleDB'><defDBName>FOUND</defDBName></referenceDefDB>
 <queryReturnParam><params><param id='1' key='n' type='int'/></params></queryReturnParam>
 <AnalysisMethod type='SQL'><SQL_Condition type='defDBSql'><SQLItem>
  <sql>select n from made</sql>
  <condition><or type='single_logic'><ge type='static'><id>1</id><value>2</value></ge></or></condition>
 </SQLItem></SQL_Condition></AnalysisMethod>
</commandRule>
<commandRule name='counted' detectScene='1'>
 <referenceDefDB type='counted'><defDBName>FOUND</defDBName><defDBNum>1</defDBNum></referenceDefDB>
 <queryReturnParam><params><param id='1' key='v' type='double'/></params></queryReturnParam>
 <AnalysisMethod type='SQL'><SQL_Condition type='defDBSql'><SQLItem>
  <sql>select max(v) as v from rows where t like 'a%'</sql>
  <condition><or type='single_logic'><ge type='static'><id>1</id><value>2</value></ge></or></condition>
 </SQLItem></SQL_Condition></AnalysisMethod>
</commandRule>
<nodeRule name='node' detectScene='1'>
 <nodeInfo param='X' path='/sys/x'/><nodeInfo param='Y' path='/sys/y'/>
 <params><param id='x' key='X' type='double'/><param id='y' key='Y' type='int'/><param id='z' key='Z' type='double'/>
 </params>
 <logicExpression type='formula' ret='Z' express='100 * X / Y'/>
 <condition><or type='single_logic'><gt><id>z</id><value>50</value></gt></or></condition>
</nodeRule>
<codeRule name='code' detectScene='1'><detectInfo id='CODE'/><userDefinedInfo>{}</userDefinedInfo></codeRule>
</rule></t></RuleList>
</r>)";

constexpr char LOG_TABLES[] =
    "CREATE TABLE event_version (_ID integer primary key, VERSION_NAME text);"
    "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, version_id integer);"
    "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);"
    "INSERT INTO event_version VALUES (1, '4.1');";

struct NoFaults : CodeRuleRunner {
    bool RunCodeRule(std::vector<std::string>, std::vector<std::string>, std::vector<std::string>,
                     const std::string&) override
    {
        return false;
    }
};

struct Verdicts : DetectionObserver {
    void OnTreeFinished(Evidence::TreeResult result) override { verdicts.push_back(std::move(result)); }
    std::vector<Evidence::TreeResult> verdicts;
};

void Require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

std::string Bytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> Answers(const std::vector<std::shared_ptr<FaultTreeResult>>& results)
{
    std::vector<std::string> answers;
    for (const auto& result : results) {
        answers.push_back(result->mTreeId + (result->mIsFault ? " fault" : ""));
        for (const auto& node : result->GetTreeNodes()) {
            answers.push_back(node->mId);
        }
    }
    return answers;
}

} // namespace

FuzzDevice::FuzzDevice()
{
    for (const char* folder : {"rules", "copies", "device/data", "device/sys", "data/Comms/Lumbra/databases"}) {
        std::filesystem::create_directories(mDir.Path(folder));
    }
    mDir.Write("rules/FaultTrees.xml", TREES);
    WriteRules(RULES);
    mDir.Write("device/sys/x", "3.5\n");
    mDir.Write("device/sys/y", "7\n");
    SetFaultTreeProperty(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
    SetFaultTreeProperty(Settings::DEVICE_ROOT_DIR, mDir.Path("device"));
    SetFaultTreeProperty(Settings::APP_DATABASE_DIR, mDir.Path("copies"));
    SetFaultTreeProperty(Settings::VERSION_NAME, "4.1");
    SetFaultTreeProperty(Settings::CURRENT_TIME, "1700000000");
    SetFaultTreeProperty(Settings::TEMPORARY_STORES, "1");
    std::filesystem::create_directories(std::filesystem::path(DevicePaths::EventLog()).parent_path());
    MakeEventLog("");
}

void FuzzDevice::WriteRules(const std::string& rules) const
{
    mDir.Write("rules/FaultTreeRules.xml", rules);
}

void FuzzDevice::WriteEventLog(const std::uint8_t* data, std::size_t size) const
{
    std::ofstream(DevicePaths::EventLog(), std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

void FuzzDevice::MakeEventLog(const std::string& sql) const
{
    const std::string path = DevicePaths::EventLog();
    std::filesystem::remove(path);
    sqlite3* connection = nullptr;
    Require(sqlite3_open(path.c_str(), &connection) == SQLITE_OK);
    const std::string all =
        "PRAGMA synchronous = OFF; PRAGMA page_size = 1024; BEGIN;" + (LOG_TABLES + sql) + "COMMIT;";
    Require(sqlite3_exec(connection, all.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK);
    Require(sqlite3_close(connection) == SQLITE_OK);
}

void FuzzDevice::WriteFoundDatabase(const std::uint8_t* data, std::size_t size) const
{
    mDir.Write("device/data/found.db", data, size);
}

void FuzzDevice::Detect() const
{
    auto info = std::make_shared<DetectInfo>();
    info->mDetectScene = 1;
    info->mTreeTag = "t";
    info->mRuleFileDir = mDir.Path("rules");
    info->mLogLocation = mDir.Path("logs");
    info->mDeviceDetails = std::make_shared<DeviceDetails>("laptop", "P", "Q", "cpu", "16", "1x1", "50");
    info->mCodeRuleRunner = std::make_shared<NoFaults>();
    const std::string log = Bytes(DevicePaths::EventLog());
    const std::string found = Bytes(mDir.Path("device/data/found.db"));
    const auto plain = Arborist(info).StartDetection();

    Arborist observed(info);
    const auto observer = std::make_shared<Verdicts>();
    observed.SetObserver(observer);
    const auto results = observed.StartDetection();
    Require(observer->verdicts.size() == results.size());
    // Where a damaged page says that something lies behind its end, SQLite reads what the memory there held: of such a file
    // two detections may say different things, but no verdict may be complete then.
    const bool areComplete = std::all_of(observer->verdicts.begin(), observer->verdicts.end(),
        [](const Evidence::TreeResult& tree) { return tree.verdict.isComplete; });
    Require(Answers(plain) == Answers(results) || !areComplete);
    for (std::size_t tree = 0; tree < results.size(); ++tree) {
        const auto& verdict = observer->verdicts[tree].verdict;
        Require(results[tree]->mIsFault == (verdict.word == Evidence::TreeVerdict::Word::FAULT));
        Require(verdict.isComplete || !verdict.open.empty());
    }
    Require(log == Bytes(DevicePaths::EventLog()));
    Require(found == Bytes(mDir.Path("device/data/found.db")));
}
