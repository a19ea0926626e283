// Loads a text with bad lines from a stream, hears of each of them and keeps what is good.

#include <cstdio>
#include <pm/pm.h>
#include <sstream>

int main() {
    std::stringstream file("PIAFILEVERSION_2.0,EXAMPLE_1.0\r\n"
                           "width=0.25\n"
                           "height=\n"
                           "color=blue\n");
    // Asked at each report while the file is read; without it a load goes on at all of them.
    const auto go_on_at_bad_values = [](const pm::Report& report) {
        return report.number == PM_ERR_BAD_LINE || report.number == PM_ERR_UNKNOWN_VALUE ? pm::Answer::go_on
                                                                                         : pm::Answer::stop;
    };
    const auto [tree, reports] = pm::load(file, {.on_report = go_on_at_bad_values});
    for (const pm::Report& report : reports) {
        std::printf("%u: %s\n", report.number, pm::error_text(report.number).c_str());
    }
    std::printf("and width = %g\n", tree.at<double>("\\width"));
    return 0;
}
