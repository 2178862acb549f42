#include "diagnosis/results_report/fleet_repairs.h"

#include <vector>

#include "diagnosis/drawing/event_label.h"
#include "diagnosis/drawing/svg_chart.h"
#include "diagnosis/drawing/svg_parts.h"
#include "diagnosis/report/page.h"
#include "diagnosis/results_report/figure_table.h"
#include "diagnosis/results_report/wilson.h"

namespace diagnosis {

namespace {

constexpr char LIMITS[] =
    "<h3>What these figures can't say</h3>\n<ul>\n"
    "<li>There is no control group. Nobody drew lots for the devices that were repaired: they may have been the worse ones, or "
    "those whose owners care more. A difference between both shares may be theirs and not the repair's.</li>\n"
    "<li>Devices that were not seen again in time are in neither share. Whether they work or were given up is not known.</li>\n"
    "<li>A device is seen when somebody makes a bundle of it, and that happens sooner where something is wrong again. The "
    "shares are those of devices that were seen, not of all.</li>\n"
    "<li>A repair starts the windows of the alarm rules of its events anew. A bundle of soon after it finds less, whatever the "
    "repair did.</li>\n"
    "<li>All root causes that name a repair count as one fault. A device may have had other repairs besides, and a bundle knows "
    "only the latest date of each.</li>\n"
    "<li>An interval says what chance does to so few devices, and nothing of the above: if the devices were drawn by lot, "
    "19 of 20 such intervals would contain the share of all. Where two overlap, chance alone may be behind the "
    "difference; where many repairs are compared, some differ by chance.</li>\n</ul>\n";

std::string PercentText(double share)
{
    return SvgTenths(share * 100) + " %";
}

std::string IntervalText(const FollowedDevices& devices)
{
    const ShareInterval interval = WilsonInterval(devices.again, devices.All());
    return devices.All() == 0 ? "-" : PercentText(interval.share) + " (" + PercentText(interval.low) + " to "
            + PercentText(interval.high) + ")";
}

ChartInterval DrawnInterval(const std::string& label, const std::string& style, const FollowedDevices& devices)
{
    const ShareInterval interval = WilsonInterval(devices.again, devices.All());
    const std::string words = std::to_string(devices.again) + " of " + Plural(devices.All(), "device", "devices");
    return {label, style, interval.share, interval.low, interval.high,
        devices.All() == 0 ? "no device was followed" : words + ", " + IntervalText(devices), devices.All() != 0};
}

std::string Picture(const RepairFigures& repairs)
{
    std::vector<ChartInterval> intervals;
    for (const RepairEffect& effect : repairs.effects) {
        if (effect.repaired.All() != 0) {
            intervals.push_back(DrawnInterval(ShownId(effect.id), "plain", effect.repaired));
            intervals.push_back(DrawnInterval("\u2003without it", "fault", effect.others));
        }
    }
    return intervals.empty() ? "" : "<div class=\"scroll\" tabindex=\"0\" role=\"group\" aria-label=\"Picture of shares\">\n"
            + SvgIntervals("Share of devices with the fault again, with and without each repair.", intervals) + "</div>\n";
}

std::string EffectTable(const std::vector<RepairEffect>& effects)
{
    FigureTable table({"Repair", "On record", "Followed", "Again", "Share (interval)", "Without it: followed", "Again",
        "Share (interval)"});
    for (const RepairEffect& effect : effects) {
        table.Row({FigureCell::Id(ShownId(effect.id)), effect.Devices(), effect.repaired.All(), effect.repaired.again,
            FigureCell::Number(IntervalText(effect.repaired)), effect.others.All(), effect.others.again,
            FigureCell::Number(IntervalText(effect.others))});
    }
    return table.Markup();
}

std::string NotFollowedTable(const std::vector<RepairEffect>& effects)
{
    FigureTable table({"Repair", "Not followed", "Fault not seen before", "Not seen in time", "Not told by then",
        "Without it: not followed"});
    for (const RepairEffect& effect : effects) {
        table.Row({FigureCell::Id(ShownId(effect.id)), effect.NotFollowed(), effect.faultNotSeenBefore, effect.notSeenAfter,
            effect.notToldAfter, effect.othersNotFollowed});
    }
    return Html("h3", "Devices that were not followed") + "\n" + table.Markup();
}

std::string Explanation(std::int64_t days)
{
    const std::string within = Plural(static_cast<std::uint64_t>(days), "day", "days");
    return Paragraph("Of the devices that had a fault and were seen again within " + within
        + ": how many had the fault again. The fault of a repair is any root cause that names it. A device with the repair on "
          "record counts from the repair on, if the last bundle before it that tells had the fault; a device without it, from "
          "the first bundle with the fault. It is followed if a bundle within " + within
        + " after that shows the fault, or excludes it: none of the root causes is there, and open checks could add none. "
          "Intervals are Wilson's for shares, at 95 percent.");
}

std::string Missing(const RepairFigures& repairs)
{
    std::string text = repairs.devices == 0
        ? Paragraph("No result names a device: bundles need a \"deviceId\", and the batch the option --device-key.") : "";
    text += repairs.devices != 0 && repairs.effects.empty()
        ? Paragraph("No device has a repair on record that a root cause of these results names.") : "";
    text += repairs.leftOut != 0
        ? Paragraph(Plural(repairs.leftOut, "more repair is", "more repairs are") + " on record on fewer devices.") : "";
    return text + (repairs.withoutCause == 0 ? "" : Paragraph(Plural(repairs.withoutCause, "repair is", "repairs are")
        + " on record that no root cause of these results names."));
}

} // namespace

std::string RepairSection(const RepairFigures& repairs)
{
    std::string text = "<section id=\"repairs\">\n<h2>What repairs came to</h2>\n<dl class=\"facts\">\n"
        + Fact("Devices", std::to_string(repairs.devices))
        + Fact("Bundles without a device", std::to_string(repairs.bundlesWithoutDevice)) + "</dl>\n" + Missing(repairs);
    if (!repairs.effects.empty()) {
        text += Explanation(repairs.withinDays) + Picture(repairs) + EffectTable(repairs.effects)
            + NotFollowedTable(repairs.effects) + LIMITS;
    }
    return text + "</section>\n";
}

} // namespace diagnosis
