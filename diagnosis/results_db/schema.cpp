#include "diagnosis/results_db/schema.h"

namespace diagnosis::results_db {

// Keys of several columns without a row id of their own: a row then takes ten bytes or so, and the rows of a bundle lie
// together.
const char* const SCHEMA = R"sql(
CREATE TABLE run(
    id INTEGER PRIMARY KEY,
    engine TEXT NOT NULL,
    rule_set TEXT NOT NULL,
    UNIQUE(engine, rule_set));

CREATE TABLE bundle(
    id INTEGER PRIMARY KEY,
    run INTEGER NOT NULL REFERENCES run,
    name TEXT NOT NULL,
    now INTEGER,
    ok INTEGER NOT NULL,
    microseconds INTEGER NOT NULL,
    device TEXT NOT NULL);
CREATE UNIQUE INDEX bundle_name ON bundle(name, ok, run, now);

CREATE TABLE failure(
    bundle INTEGER PRIMARY KEY REFERENCES bundle,
    code TEXT NOT NULL,
    message TEXT NOT NULL,
    retry INTEGER NOT NULL);

CREATE TABLE tree_def(
    id INTEGER PRIMARY KEY,
    tree TEXT NOT NULL,
    version TEXT NOT NULL);

CREATE TABLE outcome_def(
    id INTEGER PRIMARY KEY,
    verdict TEXT NOT NULL,
    is_fault INTEGER NOT NULL,
    complete INTEGER NOT NULL,
    total INTEGER NOT NULL,
    decided INTEGER NOT NULL,
    not_applicable INTEGER NOT NULL,
    not_selected INTEGER NOT NULL,
    not_checked INTEGER NOT NULL,
    no_data INTEGER NOT NULL,
    error INTEGER NOT NULL,
    possible_causes INTEGER NOT NULL,
    possible_causes_truncated INTEGER NOT NULL);

CREATE TABLE tree(
    bundle INTEGER NOT NULL REFERENCES bundle,
    tree_def INTEGER NOT NULL REFERENCES tree_def,
    outcome_def INTEGER NOT NULL REFERENCES outcome_def,
    PRIMARY KEY(bundle, tree_def)) WITHOUT ROWID;

CREATE TABLE cause_def(
    id INTEGER PRIMARY KEY,
    tree_def INTEGER NOT NULL REFERENCES tree_def,
    event TEXT NOT NULL,
    name TEXT NOT NULL,
    cut_set TEXT NOT NULL,
    fault_description TEXT NOT NULL,
    suggestions TEXT NOT NULL,
    user_defined TEXT NOT NULL);

CREATE TABLE cut_set_member(
    cause_def INTEGER NOT NULL REFERENCES cause_def,
    place INTEGER NOT NULL,
    path TEXT NOT NULL,
    PRIMARY KEY(cause_def, place)) WITHOUT ROWID;

CREATE TABLE repair(
    cause_def INTEGER NOT NULL REFERENCES cause_def,
    place INTEGER NOT NULL,
    repair TEXT NOT NULL,
    extra TEXT NOT NULL,
    operation TEXT NOT NULL,
    PRIMARY KEY(cause_def, place)) WITHOUT ROWID;

CREATE TABLE repaired(
    bundle INTEGER NOT NULL REFERENCES bundle,
    place INTEGER NOT NULL,
    repair TEXT NOT NULL,
    date INTEGER,
    PRIMARY KEY(bundle, place)) WITHOUT ROWID;

CREATE TABLE root_cause(
    bundle INTEGER NOT NULL REFERENCES bundle,
    cause_def INTEGER NOT NULL REFERENCES cause_def,
    PRIMARY KEY(bundle, cause_def)) WITHOUT ROWID;

CREATE TABLE check_def(
    id INTEGER PRIMARY KEY,
    tree_def INTEGER NOT NULL REFERENCES tree_def,
    event TEXT NOT NULL,
    rule TEXT NOT NULL,
    "check" TEXT NOT NULL,
    reason TEXT NOT NULL,
    detail TEXT NOT NULL,
    rests_on_default INTEGER NOT NULL);

CREATE TABLE open_check(
    bundle INTEGER NOT NULL REFERENCES bundle,
    check_def INTEGER NOT NULL REFERENCES check_def,
    PRIMARY KEY(bundle, check_def)) WITHOUT ROWID;

CREATE TABLE warning_def(
    id INTEGER PRIMARY KEY,
    code TEXT NOT NULL,
    message TEXT NOT NULL,
    lint TEXT NOT NULL,
    rule TEXT NOT NULL,
    event TEXT NOT NULL,
    file TEXT NOT NULL,
    line INTEGER NOT NULL);

CREATE TABLE warning(
    bundle INTEGER NOT NULL REFERENCES bundle,
    warning_def INTEGER NOT NULL REFERENCES warning_def,
    PRIMARY KEY(bundle, warning_def)) WITHOUT ROWID;

CREATE VIEW bundles AS
SELECT bundle.id AS bundle_id, bundle.name AS bundle, bundle.ok, run.engine, run.rule_set, bundle.device,
    ifnull(datetime(bundle.now, 'unixepoch'), '') AS now, bundle.microseconds / 1e6 AS seconds,
    ifnull(failure.code, '') AS error, ifnull(failure.message, '') AS error_message, ifnull(failure.retry, 0) AS retry
FROM bundle JOIN run ON run.id = bundle.run LEFT JOIN failure ON failure.bundle = bundle.id;

CREATE VIEW trees AS
SELECT tree.bundle AS bundle_id, bundle.name AS bundle, tree_def.tree, tree_def.version, outcome_def.verdict,
    outcome_def.is_fault, outcome_def.complete, outcome_def.total, outcome_def.decided, outcome_def.not_applicable,
    outcome_def.not_selected, outcome_def.not_checked, outcome_def.no_data, outcome_def.error,
    outcome_def.possible_causes, outcome_def.possible_causes_truncated
FROM tree JOIN bundle ON bundle.id = tree.bundle JOIN tree_def ON tree_def.id = tree.tree_def
    JOIN outcome_def ON outcome_def.id = tree.outcome_def;

CREATE VIEW root_causes AS
SELECT root_cause.bundle AS bundle_id, bundle.name AS bundle, tree_def.tree, cause_def.event AS cause,
    cause_def.name, cause_def.cut_set, cause_def.fault_description, cause_def.suggestions, cause_def.user_defined,
    cause_def.id AS cause_def
FROM root_cause JOIN bundle ON bundle.id = root_cause.bundle JOIN cause_def ON cause_def.id = root_cause.cause_def
    JOIN tree_def ON tree_def.id = cause_def.tree_def;

CREATE VIEW open_checks AS
SELECT open_check.bundle AS bundle_id, bundle.name AS bundle, tree_def.tree, check_def.event,
    check_def.rule, check_def."check", check_def.reason, check_def.detail, check_def.rests_on_default
FROM open_check JOIN bundle ON bundle.id = open_check.bundle JOIN check_def ON check_def.id = open_check.check_def
    JOIN tree_def ON tree_def.id = check_def.tree_def;

CREATE VIEW warnings AS
SELECT warning.bundle AS bundle_id, bundle.name AS bundle, warning_def.code, warning_def.message,
    warning_def.lint, warning_def.rule, warning_def.event, warning_def.file, warning_def.line
FROM warning JOIN bundle ON bundle.id = warning.bundle JOIN warning_def ON warning_def.id = warning.warning_def;

CREATE VIEW repairs AS
SELECT root_cause.bundle AS bundle_id, bundle.name AS bundle, tree_def.tree, cause_def.event AS cause, repair.repair,
    repair.extra, repair.operation
FROM root_cause JOIN bundle ON bundle.id = root_cause.bundle JOIN cause_def ON cause_def.id = root_cause.cause_def
    JOIN tree_def ON tree_def.id = cause_def.tree_def JOIN repair ON repair.cause_def = cause_def.id;

CREATE VIEW top_causes AS
SELECT tree_def.tree, cause_def.event AS cause, cause_def.name, cause_def.cut_set,
    count(DISTINCT root_cause.bundle) AS bundles
FROM root_cause JOIN cause_def ON cause_def.id = root_cause.cause_def JOIN tree_def ON tree_def.id = cause_def.tree_def
GROUP BY tree_def.tree, cause_def.event, cause_def.name, cause_def.cut_set
ORDER BY bundles DESC, tree_def.tree, cause_def.event, cause_def.cut_set;

CREATE VIEW undecided_by_reason AS
SELECT check_def.reason, check_def.detail, count(DISTINCT open_check.bundle || ' ' || check_def.tree_def) AS trees,
    count(DISTINCT open_check.bundle) AS bundles, count(*) AS checks
FROM open_check JOIN check_def ON check_def.id = open_check.check_def
    JOIN tree ON tree.bundle = open_check.bundle AND tree.tree_def = check_def.tree_def
    JOIN outcome_def ON outcome_def.id = tree.outcome_def
WHERE outcome_def.verdict = 'undecided'
GROUP BY check_def.reason, check_def.detail
ORDER BY trees DESC, check_def.reason, check_def.detail;

CREATE VIEW failed_by_code AS
SELECT code, retry, count(*) AS bundles, min(message) AS example
FROM failure GROUP BY code, retry ORDER BY bundles DESC, code, retry;
)sql";

const char* const EVIDENCE_SCHEMA = R"sql(
CREATE TABLE IF NOT EXISTS evidence(
    bundle INTEGER NOT NULL REFERENCES bundle,
    place INTEGER NOT NULL,
    tree_def INTEGER NOT NULL REFERENCES tree_def,
    event TEXT NOT NULL,
    evidence TEXT NOT NULL,
    PRIMARY KEY(bundle, place));
)sql";

} // namespace diagnosis::results_db
