#include <gtest/gtest.h>

#include "diagnosis/rule_source/source_file.h"
#include "tests/diagnosis/lint/sample.h"
#include "tests/diagnosis/rule_source/model_text.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

using diagnosis::rule_source::ReadRuleSetFiles;
using diagnosis::rule_source::RuleSet;

namespace {

// If a view read anything else than the engine, it would report mistakes that don't exist.
void ExpectSameReading(const std::string& folder, const std::string& tag)
{
    const auto files = ReadRuleSetFiles(folder, "");
    const std::string engine = EngineModelText(folder, tag);
    EXPECT_EQ(ViewModelText(RuleSet(files, tag)), engine) << folder;
}

TEST(RuleSetView, IsWhatTheEngineReadsOfEverySample)
{
    const LogCapture log;
    for (const LintSample& sample : AllLintSamples()) {
        for (const char* which : {"bad", "good"}) {
            const TempDir dir;
            sample.CopyTo(dir, which);
            ExpectSameReading(dir.Path(), "Laptop");
        }
    }
}

TEST(RuleSetView, IsWhatTheEngineReadsOfTheExamples)
{
    const LogCapture log;
    EXPECT_GT(EngineModelText(ARBORIST_SOURCE_DIR "/examples/laptop/rules", "Laptop").size(), 1000U);
    ExpectSameReading(ARBORIST_SOURCE_DIR "/examples/laptop/rules", "Laptop");
    ExpectSameReading(ARBORIST_SOURCE_DIR "/examples/linux-host/rules", "LinuxHost");
}

TEST(RuleSetView, ReadsWhatTheEngineReadsOfOddFiles)
{
    const LogCapture log;
    const TempDir dir;
    dir.Write("FaultTrees.xml", "<r><Tag><T id='1' version='' type=''><Intermediate-Event><ID> A </ID><ID>B</ID><And-Gate>"
        "<X><ID><!-- c -->U<b/>x</ID><DetectMode>2</DetectMode></X><Basic-Event/></And-Gate><Or-Gate><Basic-Event><ID>"
        "<![CDATA[]]></ID></Basic-Event></Or-Gate></Intermediate-Event></T><T id='2'/></Tag><Tag><T/></Tag></r>");
    dir.Write("FaultTreeRules.xml", "<r><EventRules><Tag/><Tag><Event><ID>no</ID></Event></Tag></EventRules>"
        "<EventRules/><RuleList><Tag><rule><nodeRule name='n'><params><param id='2' key='b' type='int'/><param id='10' "
        "key='a' type='int'/><param id='2' key='c' type='x'/><param id='3' type='y'/></params><params/><condition>"
        "<or/><or type='single_logic'><foo/><eq><id>1</id></eq></or><or type='single_logic'><gt><id>1</id></gt></or>"
        "<or type='multiple_logic'><and><eq><id>1</id></eq><x/><ne><id>2</id><value>3</value></ne></and></or>"
        "</condition></nodeRule><alarmRule name='a'><alarmId Eventid_Min='4294967297' Eventid_Max=' 7x'><time "
        "type='latest' period='x'/><time type='latest' period='3' threshold='0x10'/><time type='z'/></alarmId>"
        "</alarmRule><codeRule name='a'><detectInfo/></codeRule><codeRule name='c'/></rule></Tag></RuleList>"
        "<RuleCommonPart><Tag><commonPart><defDBTable/><thresholdsOrLumbraData name='t'><ThresholdMappingTable>"
        "<ThresholdItem><condition><or type=''><in><id>1</id><set>x<a>0</a><value>1</value><b>2</b></set></in><eq>"
        "<id>2</id></eq></or><or type='x'><eq><id>9</id></eq></or></condition></ThresholdItem></ThresholdMappingTable>"
        "</thresholdsOrLumbraData></commonPart></Tag></RuleCommonPart></r>");
    ExpectSameReading(dir.Path(), "Tag");
}

// The XML library would compare each attribute with all before it.
TEST(SourceFileTest, MillionAttributesAreRefusedBeforeTheyAreCompared)
{
    std::string xml = "<a>\n<b";
    for (int attribute = 0; attribute < 1'000'000; ++attribute) {
        xml += " a" + std::to_string(attribute) + "=\"\"";
    }
    const auto file = diagnosis::rule_source::SourceFile::Of("a.xml", xml + "/></a>");
    EXPECT_FALSE(file->IsLoaded());
    EXPECT_EQ(file->ProblemLine(), 2);
}

} // namespace
