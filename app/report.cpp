// SPDX-License-Identifier: MIT
#include "app/report.h"

#include <nlohmann/json.hpp>

namespace VANTIX::APP {
namespace {

using Json = nlohmann::ordered_json;

std::string Text(const Json& value) {
    // File names and PDF names may hold any bytes.
    return value.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

Json OptionsValue(const Options& options) {
    Json policy = Json::object();
    for (const auto& [key, value] : options.policy.Entries()) {
        std::visit([&, name = std::to_string(key)](auto held) { policy[name] = held; }, value);
    }
    Json fonts = Json::array();
    for (const auto& font : options.fonts.files) {
        fonts.push_back(font.first);
    }
    return {{"policy", std::move(policy)},
            {"pages", options.pages.Text()},
            {"box", BoxName(options.box)},
            {"intent", options.intent ? Json(IntentName(*options.intent)) : Json(nullptr)},
            {"hiddenText", options.keepsHiddenText ? "keep" : "drop"},
            {"embedStandardFonts", options.fonts.embedStandardFonts},
            {"missingFonts", MissingFontsName(options.fonts.missing)},
            {"fonts", std::move(fonts)}};
}

Json FontValue(const PDF::FontRecord& font) {
    return {{"name", font.name},
            {"kind", font.kind},
            {"kindOut", font.kindOut},
            {"source", font.source},
            {"substitute", font.substitute.empty() ? Json(nullptr) : Json(font.substitute)},
            {"bytes", font.bytes},
            {"extractable", font.isExtractable}};
}

Json PageValue(const PageRecord& page) {
    return {{"number", page.number}, {"label", page.label}, {"width", page.width},
            {"height", page.height}, {"bytes", page.bytes}, {"milliseconds", page.milliseconds}};
}

Json WarningValue(const PDF::Diagnostics::Warning& warning) {
    return {{"kind", warning.kind},
            {"message", warning.message},
            {"page", warning.page},
            {"count", warning.count}};
}

}  // namespace

std::string OptionsAsJson(const Options& options) {
    return Text(OptionsValue(options));
}

std::string ReportAsJson(const Options& options, const RunRecord& run,
                         const std::vector<PDF::Diagnostics::Warning>& warnings) {
    Json report = {{"version", NORVANE_VERSION},
                   {"input", options.input},
                   {"output", options.output},
                   {"options", OptionsValue(options)},
                   {"bytes", run.bytes},
                   {"colorSpaces", run.colorSpaces},
                   {"fonts", Json::array()},
                   {"pages", Json::array()},
                   {"warnings", Json::array()},
                   {"timings",
                    {{"openMilliseconds", run.openMilliseconds},
                     {"totalMilliseconds", run.totalMilliseconds}}}};
    for (const PDF::FontRecord& font : run.fonts) {
        report["fonts"].push_back(FontValue(font));
    }
    for (const PageRecord& page : run.pages) {
        report["pages"].push_back(PageValue(page));
    }
    for (const auto& warning : warnings) {
        report["warnings"].push_back(WarningValue(warning));
    }
    return Text(report);
}

}  // namespace VANTIX::APP
