#include "tests/diagnosis/lint/rule_findings.h"

#include "diagnosis/lint/lint.h"
#include "tests/support/temp_dir.h"

std::vector<std::string> FindingsInSections(const std::string& sections, const std::set<std::string>& checks,
    const std::vector<diagnosis::lint::DeviceProfile>& devices)
{
    const TempDir dir;
    dir.Write("FaultTrees.xml",
        "<F version=\"1\"><Laptop><T id=\"T\" version=\"1\" type=\"t\"><Intermediate-Event><ID>T</ID><Or-Gate>"
        "<Basic-Event><ID>E</ID></Basic-Event></Or-Gate></Intermediate-Event></T></Laptop></F>");
    dir.Write("FaultTreeRules.xml", "<R>" + sections + "</R>");
    diagnosis::lint::LintOptions options;
    options.only = checks;
    options.devices = devices;
    std::vector<std::string> found;
    for (const auto& finding : diagnosis::lint::LintFolder(dir.Path(), options).findings) {
        found.push_back(std::string(finding.check->id) + ": " + finding.message);
    }
    return found;
}

std::vector<std::string> FindingsInRules(const std::string& rules, const std::set<std::string>& checks,
    const std::vector<diagnosis::lint::DeviceProfile>& devices)
{
    return FindingsInSections("<RuleList><Laptop><rule>" + rules + "</rule></Laptop></RuleList>", checks, devices);
}

std::vector<std::string> FindingsInItem(const std::string& alarmId, const std::set<std::string>& checks)
{
    return FindingsInRules("<alarmRule name=\"r\" detectScene=\"1\">" + alarmId + "</alarmRule>", checks);
}
