#include "reports.h"

#include "arguments.h"
#include "block.h"

namespace pm::c {

pm9_report report_of(const Report& report) {
    pm9_report told{};
    told.size = sizeof told;
    told.kind = report.kind;
    told.number = static_cast<std::int32_t>(report.number);
    told.place = report.place.c_str();
    told.place_length = report.place.size();
    told.detail = report.detail.c_str();
    told.detail_length = report.detail.size();
    return told;
}

OnReport asking(pm9_on_report on_report, void* context) {
    if (on_report == nullptr) return {};
    return [on_report, context](const Report& report) {
        const pm9_report told = report_of(report);
        return on_report(context, &told) != 0 ? Answer::go_on : Answer::stop;
    };
}

} // namespace pm::c

using namespace pm::c;

pm9_status pm9_tree_reports(const pm9_tree* tree, size_t item_size, pm9_report** reports, size_t* count,
                            pm9_error* error) {
    return guarded(error, [&] {
        ArrayBlock<pm9_report> block;
        for (const pm::Report& report : required(tree, u"tree").reports()) {
            block.add(report_of(report));
            block.add_text(&pm9_report::place, &pm9_report::place_length, report.place);
            block.add_text(&pm9_report::detail, &pm9_report::detail_length, report.detail);
        }
        block.hand_out(item_size, reports, count);
    });
}
