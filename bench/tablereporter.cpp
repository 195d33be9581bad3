#include "tablereporter.h"

#include <array>
#include <ostream>

namespace {

// A quantity's aim is that of the row whose words its name ends with.
struct Aim {
    std::string_view quantity;
    bool atLeast; // or below
    double limit;
};

constexpr std::array aims{
    Aim{ "share of the bare rate", true, 0.95 },
    Aim{ "processor, % of a core", false, 5.0 },
    Aim{ "memory over the cache, MB", false, 120.0 },
    Aim{ "title at rest, ms, p99", false, 50.0 },
    Aim{ "Ratio to mpv", false, 1.0 },
    Aim{ "Ratio to mpv, inside the cache", false, 0.2 },
    Aim{ "Ratio to mpv, held back", false, 0.1 },
};

constexpr int nameWidth = 24;
constexpr int quantityWidth = 46;
constexpr int valueWidth = 10;

std::string verdict(const std::string& quantity, double value)
{
    for (const Aim& aim : aims) {
        if (quantity.ends_with(aim.quantity)) {
            const bool met = aim.atLeast ? value >= aim.limit : value < aim.limit;
            char text[64] = {};
            std::snprintf(text, sizeof text, "%s %g: %s", aim.atLeast ? ">=" : "<", aim.limit,
                met ? "met" : "MISSED");
            return text;
        }
    }
    return {};
}

} // namespace

bool TableReporter::ReportContext(const Context& context)
{
    PrintBasicContext(&GetErrorStream(), context);
    char line[160] = {};
    std::snprintf(line, sizeof line, "%-*s%-*s%*s  %s\n", nameWidth, "measure", quantityWidth,
        "quantity", valueWidth, "value", "aim");
    GetOutputStream() << line << std::string(nameWidth + quantityWidth + valueWidth + 18, '-')
                      << std::endl;
    return true;
}

void TableReporter::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        const std::string name = run.run_name.function_name;
        if (run.error_occurred) {
            m_failed = true;
            GetOutputStream() << name << "  failed: " << run.error_message << std::endl;
            continue;
        }
        std::string shownName = name;
        for (const auto& [quantity, counter] : run.counters) {
            printLine(shownName, quantity, counter.value);
            shownName.clear();
        }
    }
}

void TableReporter::printLine(const std::string& name, const std::string& quantity, double value)
{
    char line[160] = {};
    std::snprintf(line, sizeof line, "%-*s%-*s%*.2f  ", nameWidth, name.c_str(), quantityWidth,
        quantity.c_str(), valueWidth, value);
    GetOutputStream() << line << verdict(quantity, value) << std::endl;
}
