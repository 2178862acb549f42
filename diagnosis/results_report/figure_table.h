#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPORT_FIGURE_TABLE_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPORT_FIGURE_TABLE_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>

#include "diagnosis/report/html.h"

namespace diagnosis {

/// The rules of tables of figures, in addition to those of the report's style sheet.
inline constexpr char FIGURE_STYLE[] = R"(
.figures { border-collapse: collapse; font-size: .93rem; margin: .5rem 0; }
.figures th, .figures td { border: 1px solid var(--rule); padding: .15rem .6rem; text-align: left; vertical-align: top; }
.figures th { color: var(--quiet); font-weight: 600; overflow-wrap: normal; }
.figures td { overflow-wrap: normal; }
.figures td.long { overflow-wrap: anywhere; min-width: 14rem; }
.figures .number, .figures .moment { white-space: nowrap; }
.figures .number { text-align: right; }
.key { display: inline-block; width: .8rem; height: .8rem; margin: 0 .3rem 0 .8rem; border-radius: 2px; }
.key.fault { background: var(--fault); } .key.undecided { background: var(--unknown); }
.key.sound { background: var(--sound); } .key.none { background: var(--rule); } .key.plain { background: var(--link); }
)";

/// One cell. Texts are escaped; only long ones may be broken in the middle of a word.
struct FigureCell {
    FigureCell(const std::string& text) : FigureCell(text, "") {}
    FigureCell(const char* text) : FigureCell(std::string(text)) {}
    FigureCell(std::uint64_t number) : markup(Html("td", std::to_string(number), "number")) {}

    /// A number with its unit, or an id.
    static FigureCell Number(const std::string& text) { return FigureCell(text, "number"); }
    static FigureCell Moment(const std::string& text) { return FigureCell(text, "moment"); }
    static FigureCell Id(const std::string& text) { return FigureCell(text, "id"); }

    std::string markup;

private:
    static constexpr std::size_t LONG = 40;

    FigureCell(const std::string& text, const std::string& style)
        : markup(Html("td", text, text.size() <= LONG ? style : style.empty() ? "long" : style + " long"))
    {
    }
};

/// An HTML table, row by row.
class FigureTable {
public:
    explicit FigureTable(std::initializer_list<const char*> heads)
    {
        for (const char* const head : heads) {
            mMarkup += Html("th", head);
        }
        mMarkup += "</tr>\n";
    }

    void Row(std::initializer_list<FigureCell> cells)
    {
        mMarkup += "<tr>";
        for (const FigureCell& cell : cells) {
            mMarkup += cell.markup;
        }
        mMarkup += "</tr>\n";
    }

    std::string Markup() const
    {
        return "<div class=\"scroll\" tabindex=\"0\" role=\"group\" aria-label=\"Table\">\n<table class=\"figures\">\n<tr>"
            + mMarkup + "</table>\n</div>\n";
    }

private:
    std::string mMarkup;
};

} // namespace diagnosis

#endif
