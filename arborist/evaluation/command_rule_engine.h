#ifndef ARBORIST_EVALUATION_COMMAND_RULE_ENGINE_H
#define ARBORIST_EVALUATION_COMMAND_RULE_ENGINE_H

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "arborist/evaluation/rule_checker.h"
#include "arborist/model/rule.h"

class CommandRuleDbHelper;
class CommonPart;
class DefDbTableBean;
class RuleHelper;

/// Decides command rules: runs the rule's SQL on the derived database, or on each copy of an external one, and compares
/// the values of the single row with thresholds of the rule or of the common part.
///
/// Writes the values into the rule's parameters, where they stay: a rule whose database can't be opened is decided by
/// those of its last query.
class CommandRuleEngine : public RuleChecker {
public:
    /// Without a common part every rule is false.
    CommandRuleEngine(std::shared_ptr<CommonPart> commonPart, std::shared_ptr<RuleHelper> ruleHelper);
    ~CommandRuleEngine() override;

    bool IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId) override;
    /// The common part of the running detection. Its flags say which tables and copies are whole; thresholds may come from
    /// another one. Until the first call, the one of the constructor. Not null.
    void SetPrepared(std::shared_ptr<CommonPart> prepared) { mPrepared = std::move(prepared); }

    /// Call behind the last rule of a detection: the next one may copy the database anew that is still open.
    void EndDetection();

private:
    friend struct CommandRuleEnginePeer; // tests reach the steps through it

    using ParamList = std::vector<std::shared_ptr<Param>>;
    using Reason = Evidence::Reason;

    // The query that runs on each database of a rule.
    struct Query {
        std::string sql;
        ParamList params;
        bool isNormalization = false;
        std::shared_ptr<Param> first;
        std::shared_ptr<Param> second;
    };

    // Records a name that can't be used. Returns false.
    bool Reject(Reason reason, const std::string& name);
    // Adds a statement to the rule's record; null without an observer.
    Evidence::Statement* AddRecord(const std::string& path, const std::string& sql);
    Query QueryOf(const CommandRule& rule, const std::string& eventId) const;
    static void GetTimeParaList(ParamList& list, const ParamMap& params, const std::string& analysisType,
        const CommandRule::SqlItem& sqlItem);
    static void GetTimeInterval(const ParamList& list, bool isNormalization, std::shared_ptr<Param>& first,
        std::shared_ptr<Param>& second);
    std::string GetSqlScript(const CommandRule::SqlItem& sqlItem, const std::string& eventId,
        const std::shared_ptr<CommandRule::ReferenceDefDb>& reference) const;
    static std::string JoinSqlStrWithTime(const std::string& sql, std::int64_t start);
    bool IsFaultInDatabase(const CommandRule& rule, const Query& query, const std::string& path);
    bool IsFaultInOpenDatabase(const CommandRule& rule, const Query& query, Evidence::Statement* record);
    Reason TroubleOfStatement() const;
    void NoteTrouble(Reason trouble, bool isFault);
    bool IsFaultInReference(const CommandRule& rule, const Query& query);
    void NoteCopies(const DefDbTableBean& bean) const;
    static std::shared_ptr<Param> GetParam(const ParamList& list, const std::string& id);
    std::string GetThreshold(const std::shared_ptr<OrLogic>& orLogic, const CommandRule& rule) const;
    bool IsFaultForSingleSql(const CommandRule& rule, const ParamList& list);
    void NoteEarlierCondition() const;
    bool IsFaultForSingleLogic(const ParamList& list, const std::shared_ptr<OrLogic>& orLogic, const CommandRule& rule);
    bool IsFaultForSqlMultiLogic(const ParamList& list, const std::shared_ptr<OrLogic>& orLogic);

    std::shared_ptr<CommonPart> mCommonPart;
    std::shared_ptr<CommonPart> mPrepared;
    std::shared_ptr<RuleHelper> mRuleHelper;
    std::shared_ptr<CommandRuleDbHelper> mDbHelper;
};

#endif
