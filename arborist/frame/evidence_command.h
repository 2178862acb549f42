#ifndef ARBORIST_FRAME_EVIDENCE_COMMAND_H
#define ARBORIST_FRAME_EVIDENCE_COMMAND_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "arborist/frame/comparable.h"
#include "arborist/frame/evidence_values.h"
#include "arborist/frame/evidence_words.h"

namespace Evidence {

/// A column of a command rule's single row, before and after scaling (the same text if nothing is scaled).
struct Column {
    /// The id of the parameter in the rule.
    std::string id;
    /// The name of the column.
    std::string key;
    /// How its value is read: "int", "long", "float", "double" or "string".
    std::string type;
    /// The value as the row has it.
    std::string raw;
    /// The value that is compared.
    std::string value;

    ARBORIST_COMPARABLE(Column)
};

/// The time between two columns of a command rule's row. The values of the row are scaled from this time to 30 days.
struct Interval {
    /// The column with the start; empty if the rule doesn't name two columns.
    std::string startKey;
    /// The column with the end; empty if the rule doesn't name two columns.
    std::string endKey;
    /// The start in seconds since the epoch; 0 for a missing column.
    std::int64_t start = 0;
    /// The end in seconds since the epoch; 0 for a missing column.
    std::int64_t end = 0;
    /// The whole days between them.
    std::uint64_t days = 0;
    /// False if nothing can be scaled: a column is 0, or they are one second apart.
    bool usable = false;

    ARBORIST_COMPARABLE(Interval)
};

/// A command rule's statement on one database, and the evaluation of its row.
struct Statement {
    /// Path of the file; empty for the derived database if it could not be opened.
    std::string database;
    /// The statement as it was run.
    std::string sql;
    /// True if the database could be opened.
    bool opened = false;
    /// The number of rows; if the statement failed, of the rows before the failure.
    std::uint64_t rows = 0;
    /// The database's message for a statement that failed; empty otherwise.
    std::string error;
    /// Set if the rule scales its values.
    std::optional<Interval> interval;
    /// The columns that the conditions name.
    std::vector<Column> columns;
    /// The comparisons in the order in which they were made.
    std::vector<Comparison> comparisons;
    /// The result of the conditions on this database. With several databases each statement has a reason of its own.
    Reason reason = Reason::NONE;

    ARBORIST_COMPARABLE(Statement)
};

/// Why there is no copy of the databases of one kind.
struct MissingCopies {
    /// The cause.
    NoCopy cause = NoCopy::NONE;
    /// The folder that was searched, as the rule set names it; with FOLDER_MISSING all folders that the rule set names.
    std::vector<std::string> folders;
    /// The regular expression for the paths of the files.
    std::string pattern;

    ARBORIST_COMPARABLE(MissingCopies)
};

/// The number of databases of one kind ("defDBTable") in which a command rule found its fault.
struct Hits {
    /// The "defDBTable" that the rule refers to.
    std::string name;
    /// The number of copies that were queried.
    std::size_t databases = 0;
    /// The number of copies whose row met the condition.
    std::int64_t hits = 0;
    /// The number of hits at which the rule fires; with 0 or less the rule needs no hit.
    std::int64_t needed = 0;
    /// Why no database was copied; not set if one was copied.
    std::optional<MissingCopies> missingCopies = std::nullopt;

    /// How many hits are missing; 0 if there are enough.
    std::int64_t Missing() const { return hits < needed ? needed - hits : 0; }

    ARBORIST_COMPARABLE(Hits)
};

/// The part of a command rule: its statements.
struct Command {
    /// The moment from which the rule looks at the log. Not set for a rule on copied databases, which has no time limit.
    std::optional<Start> start;
    /// One statement for each database, in the order of running.
    std::vector<Statement> statements;
    /// Set for a rule on copied databases.
    std::optional<Hits> hits;

    ARBORIST_COMPARABLE(Command)
};

} // namespace Evidence

#endif
