// SPDX-License-Identifier: MIT
// The colour models, judged on plates, and those of light on pages.
#include <gtest/gtest.h>
#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <iterator>
#include <ostream>
#include <set>
#include <sstream>
#include <tuple>

#include "e2e/imagesheets.h"
#include "e2e/tool.h"
#include "support/ghostscriptpages.h"
#include "support/iccprofiles.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

constexpr std::array kProcessInks{"Cyan", "Magenta", "Yellow", "Black"};

/// A sheet, written to a file.
class Job {
public:
    explicit Job(const Sheet& sheet) : mInput(mFolder.File("sheet.pdf")) {
        WriteFile(mInput, sheet.Pdf());
    }

    [[nodiscard]] const std::string& Input() const { return mInput; }

    /// A file of the job, such as a profile.
    [[nodiscard]] std::string Write(const std::string& name,
                                    const std::vector<std::uint8_t>& bytes) const {
        std::string path = mFolder.File(name);
        WriteFile(path, std::string(bytes.begin(), bytes.end()));
        return path;
    }

    /// The tool's output with these options; what it said is then in `errors`.
    [[nodiscard]] std::string Convert(std::vector<std::string> options) {
        SCOPED_TRACE(testing::PrintToString(options));
        std::string output = mFolder.File("sheet.ps");
        options.insert(options.end(), {mInput, output});
        const ChildResult run = RunTool(options);
        EXPECT_EQ(run.exitStatus, kDone) << run.errors;
        errors = run.errors;
        return output;
    }

    /// The plates that the tool's output has with these options.
    [[nodiscard]] Plates Separate(const std::vector<std::string>& options) {
        SCOPED_TRACE(testing::PrintToString(options));
        auto drawn = DrawPlates(Convert(options), {});
        EXPECT_EQ(drawn.complaint, "");
        return drawn.pages.size() == 1 ? drawn.pages.front() : Plates{};
    }

    /// The page that it draws.
    [[nodiscard]] PageImage Draw(const std::vector<std::string>& options) {
        SCOPED_TRACE(testing::PrintToString(options));
        auto drawn = DrawPages(Convert(options), {});
        EXPECT_EQ(drawn.complaint, "");
        return drawn.pages.size() == 1 ? drawn.pages.front() : PageImage{};
    }

    std::string errors;

private:
    TemporaryFolder mFolder;
    std::string mInput;
};

std::vector<std::string> NamesOf(const Plates& plates) {
    std::vector<std::string> names;
    for (const auto& [name, plate] : plates) {
        names.push_back(name);
    }
    return names;
}

/// Sheets whose inks no model changes: process inks and spots, and spots as process inks where
/// there are to be none.
class UnconvertedImages : public testing::TestWithParam<std::tuple<const char*, const char*>> {};

TEST_P(UnconvertedImages, KeepTheirPlates) {
    const auto [name, model] = GetParam();
    const bool hasSpots = std::string_view(model).substr(0, 4) != "cmyk";
    Sheet sheet;
    ImageSheet(name).draw(sheet);
    Job job(sheet);
    GhostscriptOptions options;
    options.spots = hasSpots;
    const auto reference = DrawPlates(job.Input(), options);
    ASSERT_EQ(reference.pages.size(), 1U);
    const Plates plates = job.Separate({"--level", "3", "--color", model});
    ASSERT_EQ(NamesOf(plates), NamesOf(reference.pages.front()));
    for (const auto& [ink, plate] : reference.pages.front()) {
        SCOPED_TRACE(ink);
        CompareCells(sheet, plates.at(ink), plate);
    }
}

INSTANTIATE_TEST_SUITE_P(Sheets, UnconvertedImages,
                         testing::Combine(testing::Values("DeviceGray", "DeviceCmyk", "Separation",
                                                          "DeviceN", "NChannel", "IndexedGray",
                                                          "IndexedCmyk", "IndexedSeparation",
                                                          "Bilevel"),
                                          testing::Values("as-is", "cmyk", "cmyk-managed",
                                                          "devicen", "devicen-managed")),
                         [](const auto& one) {
                             std::string name =
                                 std::string(std::get<0>(one.param)) + "_" + std::get<1>(one.param);
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

using Bytes = std::vector<std::uint8_t>;

/// Ink amounts of 0 to 1 of pixels, one after the other.
using Inks = std::vector<double>;

/// A space that is converted: how the colour library does it with samples, in a colour-managed
/// model or another one.
struct ConvertedSpace {
    const char* name;
    std::string (*text)(Sheet& sheet);
    std::size_t components;
    Inks (*inks)(const Samples& samples, const Bytes& press, bool isManaged);
    bool isPalette = false;
};

void PrintTo(const ConvertedSpace& space, std::ostream* out) {
    *out << space.name;
}

cmsHPROFILE Open(const Bytes& bytes) {
    return cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size()));
}

std::string ProfileText(Sheet& sheet, const Bytes& profile, const char* components) {
    const std::string bytes(profile.begin(), profile.end());
    return "[/ICCBased " + sheet.Add(StreamOf(bytes, "/N " + std::string(components))) + "]";
}

/// A palette of all grays.
std::string PaletteText(const std::string& base) {
    std::string palette;
    for (int i = 0; i < 256; ++i) {
        palette.append(3, static_cast<char>(i));
    }
    return "[/Indexed " + base + " 255 <" + Hex(palette) + "]";
}

/// Samples as parts of their range; `each` times, where one component stands for several.
std::vector<double> PartsOf(const Samples& samples, std::size_t each = 1) {
    std::vector<double> parts;
    for (const std::uint16_t value : samples.values) {
        parts.insert(parts.end(), each, static_cast<double>(value) / samples.Greatest());
    }
    return parts;
}

/// Converts pixels of doubles from one profile into another, and closes both.
std::vector<double> Linked(cmsHPROFILE source, cmsUInt32Number from, cmsHPROFILE target,
                           cmsUInt32Number to, const std::vector<double>& values) {
    cmsHTRANSFORM transform = cmsCreateTransform(source, from, target, to,
                                                 INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOOPTIMIZE);
    const std::size_t pixels = values.size() / T_CHANNELS(from);
    std::vector<double> out(T_CHANNELS(to) * pixels);
    cmsDoTransform(transform, values.data(), out.data(), static_cast<cmsUInt32Number>(pixels));
    cmsDeleteTransform(transform);
    cmsCloseProfile(source);
    cmsCloseProfile(target);
    return out;
}

Inks ToInks(cmsHPROFILE source, cmsUInt32Number format, const std::vector<double>& values,
            const Bytes& press) {
    Inks inks = Linked(source, format, Open(press), TYPE_CMYK_DBL, values);
    std::transform(inks.begin(), inks.end(), inks.begin(), [](double ink) { return ink / 100; });
    return inks;
}

Inks StandardRgbInks(const Samples& samples, const Bytes& press, bool /*isManaged*/) {
    return ToInks(cmsCreate_sRGBProfile(), TYPE_RGB_DBL, PartsOf(samples, 3 / samples.components),
                  press);
}

template <int Tenths>
Inks GammaRgbInks(const Samples& samples, const Bytes& press, bool /*isManaged*/) {
    return ToInks(Open(GammaRGBProfile(Tenths / 10.0)), TYPE_RGB_DBL,
                  PartsOf(samples, 3 / samples.components), press);
}

/// By way of RGB, as which images in Lab are drawn.
Inks LabInks(const Samples& samples, const Bytes& press, bool /*isManaged*/) {
    std::vector<double> lab = PartsOf(samples);
    for (std::size_t i = 0; i < lab.size(); ++i) {
        lab[i] = i % 3 == 0 ? 100 * lab[i] : 40 * lab[i] - 20;
    }
    std::vector<double> rgb = Linked(cmsCreateLab4Profile(nullptr), TYPE_Lab_DBL,
                                     cmsCreate_sRGBProfile(), TYPE_RGB_DBL, lab);
    std::transform(rgb.begin(), rgb.end(), rgb.begin(),
                   [](double light) { return std::clamp(light, 0.0, 1.0); });
    return ToInks(cmsCreate_sRGBProfile(), TYPE_RGB_DBL, rgb, press);
}

/// Inks are what they are, unless they are to be matched.
Inks ProfileInks(const Samples& samples, const Bytes& press, bool isManaged) {
    std::vector<double> parts = PartsOf(samples);
    if (!isManaged) {
        return parts;
    }
    std::transform(parts.begin(), parts.end(), parts.begin(),
                   [](double part) { return 100 * part; });
    return ToInks(Open(InkProfile()), TYPE_CMYK_DBL, parts, press);
}

/// Black that is as dark as the inks of a gray.
Inks GrayInks(const Samples& samples, const Bytes& press, bool isManaged) {
    const std::vector<double> grays = PartsOf(samples);
    Inks inks;
    if (!isManaged) {
        for (const double gray : grays) {
            inks.insert(inks.end(), {0, 0, 0, 1 - gray});
        }
        return inks;
    }
    inks = ToInks(Open(GammaGrayProfile(1.8)), TYPE_GRAY_DBL, grays, press);
    for (std::size_t i = 0; i < inks.size(); i += 4) {
        const double light =
            0.3 * (1 - inks[i]) + 0.59 * (1 - inks[i + 1]) + 0.11 * (1 - inks[i + 2]);
        const double black = 1 - light * (1 - inks[i + 3]);
        std::fill_n(inks.begin() + static_cast<std::ptrdiff_t>(i), 3, 0.0);
        inks[i + 3] = black;
    }
    return inks;
}

const ConvertedSpace kConverted[] = {
    {"DeviceRgb", [](Sheet&) { return std::string("/DeviceRGB"); }, 3, StandardRgbInks},
    {"IccRgb", [](Sheet& sheet) { return ProfileText(sheet, GammaRGBProfile(1.8), "3"); }, 3,
     GammaRgbInks<18>},
    {"IccGray", [](Sheet& sheet) { return ProfileText(sheet, GammaGrayProfile(1.8), "1"); }, 1,
     GrayInks},
    {"IccCmyk", [](Sheet& sheet) { return ProfileText(sheet, InkProfile(), "4"); }, 4, ProfileInks},
    {"CalGray",
     [](Sheet&) { return std::string("[/CalGray << /WhitePoint [0.9505 1 1.089] /Gamma 1.8 >>]"); },
     1, GrayInks},
    {"CalRgb",
     [](Sheet&) {
         return std::string(
             "[/CalRGB << /WhitePoint [0.9505 1 1.089] /Gamma [2.2 2.2 2.2] /Matrix [0.4124 0.2126 "
             "0.0193 0.3576 0.7152 0.1192 0.1805 0.0722 0.9505] >>]");
     },
     3, GammaRgbInks<22>},
    {"Lab",
     [](Sheet&) {
         return std::string("[/Lab << /WhitePoint [0.9642 1 0.8249] /Range [-20 20 -20 20] >>]");
     },
     3, LabInks},
    {"IndexedRgb", [](Sheet&) { return PaletteText("/DeviceRGB"); }, 1, StandardRgbInks, true},
    {"IndexedIcc",
     [](Sheet& sheet) { return PaletteText(ProfileText(sheet, GammaRGBProfile(1.8), "3")); }, 1,
     GammaRgbInks<18>, true},
};

/// Inks by the rule of the PostScript Language Reference, 7.2.3, with all that they share in black.
Inks InksByRule(const Samples& samples) {
    const std::vector<double> colors = PartsOf(samples, 3 / samples.components);
    Inks inks;
    for (std::size_t i = 0; i < colors.size(); i += 3) {
        const double light = std::max({colors[i], colors[i + 1], colors[i + 2]});
        for (std::size_t k = 0; k < 3; ++k) {
            inks.push_back(light - colors[i + k]);
        }
        inks.push_back(1 - light);
    }
    return inks;
}

/// Greatest difference, of 255, of the plates in a cell from the inks of its pixels.
double Farthest(const Plates& plates, std::size_t cell, const Samples& samples,
                const std::vector<double>& inks) {
    double farthest = 0;
    for (std::size_t k = 0; k < kProcessInks.size(); ++k) {
        const PageImage plate = Sheet::CellOf(plates.at(kProcessInks[k]), cell);
        for (std::size_t i = 0; i < samples.width * samples.height; ++i) {
            const std::size_t x = 5 * (i % samples.width) + 2;
            const std::size_t y = 5 * (i / samples.width) + 7;
            const double drawn = 255.0 - plate.At(x, y, 0);
            farthest = std::max(farthest, std::abs(drawn - 255 * inks[4 * i + k]));
        }
    }
    return farthest;
}

class ConvertedImages : public testing::TestWithParam<ConvertedSpace> {
protected:
    void SetUp() override {
        const std::string space = GetParam().text(mSheet);
        for (const unsigned bits : {1U, 2U, 4U, 8U, 16U}) {
            if (!GetParam().isPalette || bits == 8) {
                mSamples.push_back(Ramps(11, 7, GetParam().components, bits));
                mSheet.Image(std::to_string(bits), ImageEntries(mSamples.back(), space),
                             Packed(mSamples.back()));
            }
        }
    }

    template <class InksOf>
    void Check(const Plates& plates, const InksOf& inksOf, double most) const {
        ASSERT_EQ(plates.size(), 4U);
        for (std::size_t cell = 0; cell < mSamples.size(); ++cell) {
            const Samples& samples = mSamples[cell];
            EXPECT_LE(Farthest(plates, cell, samples, inksOf(samples)), most)
                << samples.bits << " bits";
        }
    }

    Sheet mSheet;
    std::vector<Samples> mSamples;
};

TEST_P(ConvertedImages, HaveTheInksOfTheColourLibrary) {
    Job job(mSheet);
    const Bytes press = PressProfile();
    const std::string file = job.Write("press.icc", press);
    for (const auto& [model, level] : {std::pair{"cmyk", "2"},
                                       {"cmyk", "3"},
                                       {"cmyk-managed", "2"},
                                       {"devicen", "3"},
                                       {"devicen-managed", "3"}}) {
        SCOPED_TRACE(model);
        const bool isManaged = std::string_view(model).find("managed") != std::string_view::npos;
        const Plates plates =
            job.Separate({"--color", model, "--level", level, "--cmyk-profile", file});
        const auto inksOf = [&](const Samples& samples) {
            return GetParam().inks(samples, press, isManaged);
        };
        Check(plates, inksOf, 3);
    }
}

INSTANTIATE_TEST_SUITE_P(Spaces, ConvertedImages, testing::ValuesIn(kConverted),
                         [](const auto& one) { return std::string(one.param.name); });

using ImagesByRule = ConvertedImages;

TEST_P(ImagesByRule, HaveBlackForWhatTheInksShare) {
    Job job(mSheet);
    for (const char* model : {"cmyk", "cmyk-managed", "devicen", "devicen-managed"}) {
        SCOPED_TRACE(model);
        Check(job.Separate({"--color", model}), InksByRule, 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Spaces, ImagesByRule,
                         testing::Values(kConverted[0], kConverted[std::size(kConverted) - 2]),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(PromotedGray, IsBlackAloneInEveryModel) {
    Sheet sheet;
    std::vector<Samples> ramps;
    for (const unsigned bits : {1U, 2U, 4U, 8U, 16U}) {
        ramps.push_back(Ramps(11, 7, 1, bits));
        sheet.Image("image", ImageEntries(ramps.back(), "/DeviceGray"), Packed(ramps.back()));
    }
    sheet.Draw("fill", "0.3 g 0 0 1 1 re f");
    Job job(sheet);
    for (const char* model : {"cmyk", "cmyk-managed", "devicen", "devicen-managed"}) {
        SCOPED_TRACE(model);
        const Plates plates = job.Separate({"--color", model, "--promote-gray"});
        ASSERT_EQ(plates.size(), 4U);
        for (std::size_t cell = 0; cell < ramps.size(); ++cell) {
            EXPECT_LE(Farthest(plates, cell, ramps[cell], GrayInks(ramps[cell], {}, false)), 3)
                << ramps[cell].bits << " bits";
        }
        EXPECT_NEAR(Sheet::CellOf(plates.at("Black"), ramps.size()).At(20, 20, 0), 0.3 * 255, 2);
    }
}

/// A share that no test needs.
constexpr int kAny = -1;

/// A colour that fills a cell, and what it leaves on the plates, in hundredths.
struct Fill {
    const char* color;
    std::map<std::string, int> inks;         ///< in models with spots
    std::map<std::string, int> processInks;  ///< without
    int gray = kAny;                         ///< black in gray models
};

/// Of colours that profiles change only those are told apart that they do not.
const Fill kFills[] = {
    {"0.3 g", {{"Black", 70}}, {{"Black", 70}}, 70},
    {"0 0 0 0.4 k", {{"Black", 40}}, {{"Black", 40}}, 40},
    {"0.8 0 0.2 0.1 k",
     {{"Cyan", 80}, {"Yellow", 20}, {"Black", 10}},
     {{"Cyan", 80}, {"Yellow", 20}, {"Black", 10}}},
    {"/Black cs 0.5 scn", {{"Black", 50}}, {{"Black", 50}}, 50},
    {"/BlackN cs 0.5 scn", {{"Black", 50}}, {{"Black", 50}}, 50},
    {"/Orange cs 0.5 scn", {{"Orange", 50}}, {{"Magenta", 30}, {"Yellow", 50}}},
    {"/Rgb cs 0.5 scn", {{"Light", 50}}, {{"Magenta", 25}, {"Yellow", 50}}},
    {"/None cs 1 scn", {}, {}, 0},
    {"/Inks cs 0.4 0.6 scn",
     {{"Orange", 40}, {"Black", 60}},
     {{"Magenta", 24}, {"Yellow", 40}, {"Black", 60}}},
    {"/All cs 0.9 scn",
     {{"Cyan", 90}, {"Magenta", 90}, {"Yellow", 90}, {"Black", 90}, {"Orange", 90}, {"Light", 90}},
     {{"Cyan", 90}, {"Magenta", 90}, {"Yellow", 90}, {"Black", 90}},
     90},
};

class Fills : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        const auto inks = [](const char* full) {
            return "<< /FunctionType 2 /Domain [0 1] /N 1 /C0 [0 0 0 0] /C1 [" + std::string(full) +
                   "] >>";
        };
        mSheet.Space("Black", "[/Separation /Black /DeviceCMYK " + inks("0.2 0.2 0.2 1") + "]");
        mSheet.Space("BlackN", "[/DeviceN [/Black] /DeviceCMYK " + inks("0.2 0.2 0.2 1") + "]");
        mSheet.Space("Orange", "[/Separation /Orange /DeviceCMYK " + inks("0 0.6 1 0") + "]");
        mSheet.Space("Rgb",
                     "[/Separation /Light /DeviceRGB << /FunctionType 2 /Domain [0 1] /N 1 "
                     "/C0 [1 1 1] /C1 [1 0.5 0] >>]");
        mSheet.Space("None", "[/Separation /None /DeviceCMYK " + inks("1 1 1 1") + "]");
        mSheet.Space("All", "[/Separation /All /DeviceCMYK " + inks("1 1 1 1") + "]");
        mSheet.Space("Inks",
                     "[/DeviceN [/Orange /Black] /DeviceCMYK " +
                         mSheet.Add(StreamOf("{ exch dup 0.6 mul exch 0 3 1 roll 4 -1 roll }",
                                             "/FunctionType 4 /Domain [0 1 0 1] "
                                             "/Range [0 1 0 1 0 1 0 1]")) +
                         "]");
        for (const Fill& fill : kFills) {
            mSheet.Draw(fill.color, std::string(fill.color) + " 0 0 1 1 re f");
        }
    }

    static void Check(const Plates& plates, bool hasSpots) {
        for (std::size_t i = 0; i < std::size(kFills); ++i) {
            const auto& expected = hasSpots ? kFills[i].inks : kFills[i].processInks;
            for (const auto& [ink, plate] : plates) {
                const auto found = expected.find(ink);
                const int share = found == expected.end() ? 0 : found->second;
                const double drawn = 255.0 - Sheet::CellOf(plate, i).At(20, 20, 0);
                EXPECT_NEAR(drawn / 2.55, share, 1) << kFills[i].color << " on " << ink;
            }
        }
    }

    Sheet mSheet;
};

TEST_P(Fills, StayOnTheirPlates) {
    const std::string model = GetParam();
    const bool hasSpots = model.substr(0, 4) != "cmyk";
    Job job(mSheet);
    const std::string profile = job.Write("press.icc", PressProfile());
    const Plates plates = job.Separate({"--color", model});
    const std::vector<std::string> names =
        hasSpots ? std::vector<std::string>{"Black", "Cyan", "Light", "Magenta", "Orange", "Yellow"}
                 : std::vector<std::string>{"Black", "Cyan", "Magenta", "Yellow"};
    EXPECT_EQ(NamesOf(plates), names);
    Check(plates, hasSpots);
    // What has no light in it, no profile changes.
    if (hasSpots) {
        Check(job.Separate({"--color", model, "--cmyk-profile", profile}), hasSpots);
    }
}

INSTANTIATE_TEST_SUITE_P(Models, Fills,
                         testing::Values("as-is", "cmyk", "cmyk-managed", "devicen",
                                         "devicen-managed"),
                         NameOfCase());

using GrayFills = Fills;

TEST_P(GrayFills, LeaveInkOnNoPlateButBlack) {
    const std::string model = GetParam();
    Job job(mSheet);
    const Plates plates = job.Separate({"--color", model});
    EXPECT_EQ(NamesOf(plates), (std::vector<std::string>{"Black", "Cyan", "Magenta", "Yellow"}));
    for (std::size_t i = 0; i < std::size(kFills); ++i) {
        SCOPED_TRACE(kFills[i].color);
        const bool isRegistration = kFills[i].inks.size() > 4;
        for (const auto& [ink, plate] : plates) {
            const double share = (255.0 - Sheet::CellOf(plate, i).At(20, 20, 0)) / 2.55;
            const bool isBlack = ink == "Black";
            if (!isBlack && !isRegistration) {
                EXPECT_EQ(share, 0) << ink;
            } else if (isBlack && kFills[i].gray != kAny && model == "gray") {
                EXPECT_NEAR(share, kFills[i].gray, 1);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Models, GrayFills, testing::Values("gray", "gray-managed", "gray-100"),
                         NameOfCase());

/// Whether no plate but black has ink.
bool IsGray(const Plates& plates) {
    return std::all_of(plates.begin(), plates.end(), [](const auto& plate) {
        return plate.first == "Black" || plate.second.IsBlank();
    });
}

/// Whether no pixel has a hue, but for what an interpreter rounds in CIE-based colours.
bool IsGray(const PageImage& page) {
    constexpr int kMost = 2;
    for (std::size_t i = 0; i + 2 < page.samples.size(); i += 3) {
        const auto [least, greatest] =
            std::minmax({page.samples[i], page.samples[i + 1], page.samples[i + 2]});
        if (greatest - least > kMost) {
            return false;
        }
    }
    return true;
}

void ExpectAllDrawn(const Sheet& sheet, const PageImage& page) {
    for (std::size_t i = 0; i < sheet.Cells().size(); ++i) {
        const Sheet::Cell& cell = sheet.Cells()[i];
        EXPECT_TRUE(!Sheet::CellOf(page, i).IsBlank() || !cell.isJudged) << cell.name;
    }
}

class LightSheets : public testing::TestWithParam<SheetCase> {};

TEST_P(LightSheets, AreGrayInGrayModels) {
    Sheet sheet;
    GetParam().draw(sheet);
    Job job(sheet);
    for (const char* model : {"gray", "gray-managed"}) {
        SCOPED_TRACE(model);
        const Plates plates = job.Separate({"--color", model});
        EXPECT_TRUE(IsGray(plates));
        ExpectAllDrawn(sheet, plates.at("Black"));
    }
    const PageImage page = job.Draw({"--color", "gray-calibrated"});
    EXPECT_TRUE(IsGray(page));
    ExpectAllDrawn(sheet, page);
}

TEST_P(LightSheets, HoldNoInksInRgbModels) {
    Sheet sheet;
    GetParam().draw(sheet);
    Job job(sheet);
    for (const char* model : {"rgb", "rgb-managed"}) {
        for (const char* level : {"2", "3"}) {
            const std::vector<std::string> options{"--color", model, "--level", level};
            EXPECT_FALSE(job.Draw(options).IsBlank());
            const std::string text = ReadFile(job.Convert(options));
            for (const char* ink : {"/DeviceCMYK", "/Separation (", "/DeviceN"}) {
                const std::size_t at = text.find(ink);
                EXPECT_EQ(at, std::string::npos)
                    << text.substr(at == std::string::npos ? 0 : at, 80);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Sheets, LightSheets, testing::ValuesIn(ImageSheets()),
                         [](const auto& one) { return std::string(one.param.name); });

/// Sheets of light alone.
class KeptLight : public testing::TestWithParam<const char*> {};

TEST_P(KeptLight, LooksAsInThePdf) {
    Sheet sheet;
    ImageSheet(GetParam()).draw(sheet);
    Job job(sheet);
    const auto reference = DrawPages(job.Input(), {});
    ASSERT_EQ(reference.pages.size(), 1U);
    const bool isGray = std::string_view(GetParam()).find("Rgb") == std::string_view::npos;
    for (const char* model : {"rgb", "rgb-managed", "gray", "gray-managed", "gray-calibrated"}) {
        if (isGray || model[0] == 'r') {
            SCOPED_TRACE(model);
            CompareCells(sheet, job.Draw({"--color", model}), reference.pages.front());
        }
    }
    SCOPED_TRACE("promoted");
    CompareCells(sheet, job.Draw({"--color", "rgb", "--promote-gray"}), reference.pages.front());
}

INSTANTIATE_TEST_SUITE_P(Sheets, KeptLight,
                         testing::Values("DeviceGray", "DeviceRgb", "IndexedGray", "IndexedRgb",
                                         "Bilevel"),
                         NameOfCase());

/// Prints the families of the colour spaces that a job selects, with what they lie over, and of
/// those that its images and shadings name; of palettes their bases'. One a line.
constexpr const char* kRecorder = R"(%!PS
/selected { dup type /arraytype ne { = } {
  dup 0 get /Indexed eq { 1 get selected } {
    dup 0 get dup = dup /Separation eq exch /DeviceN eq or { dup 2 get selected } if
    dup 0 get /Pattern eq 1 index length 1 gt and { dup 1 get selected } if pop
  } ifelse } ifelse } bind def
/named { { exch pop dup type /dicttype eq { dup /ColorSpace known { dup /ColorSpace get selected } if
  named } { pop } ifelse } forall } bind def
/painted { dup type /dicttype eq { currentcolorspace selected dup /ColorSpace known
  { dup /ColorSpace get selected } if dup named } { /DeviceGray selected } ifelse } bind def
/setcolorspace { dup selected setcolorspace } bind def
/image { painted image } bind def
/imagemask { currentcolorspace selected imagemask } bind def
/colorimage { /colorimage = colorimage } bind def
/shfill { dup /ColorSpace get selected shfill } bind def
/setgray { /DeviceGray selected setgray } bind def
/setrgbcolor { /DeviceRGB selected setrgbcolor } bind def
/setcmykcolor { /DeviceCMYK selected setcmykcolor } bind def
)";

using Spaces = std::set<std::string>;

/// The families that the tool's output for a PDF selects.
Spaces SelectedBy(const std::string& input, const char* model) {
    const TemporaryFolder folder;
    const std::string output = folder.File("job.ps");
    const ChildResult run = RunTool({"--color", model, input, output});
    EXPECT_EQ(run.exitStatus, kDone) << run.errors;
    const ProgramOutput printed = RunPostScript(kRecorder + ReadFile(output));
    EXPECT_EQ(printed.complaint, "");
    std::istringstream lines(printed.text);
    return {std::istream_iterator<std::string>(lines), std::istream_iterator<std::string>()};
}

// Plates would not tell: interpreters spread CIE-based gray over all inks.
void ExpectSpacesOfTheModels(const std::string& input, bool isCalibrated) {
    const Spaces light{"DeviceGray", "DeviceRGB", "Pattern"};
    const Spaces gray{"DeviceGray", "Pattern"};
    const std::pair<const char*, Spaces> kModels[] = {
        {"rgb", light},     {"rgb-managed", light},
        {"gray", gray},     {"gray-managed", gray},
        {"gray-100", gray}, {"gray-calibrated", {"CIEBasedA", "DeviceGray", "Pattern"}}};
    for (const auto& [model, allowed] : kModels) {
        SCOPED_TRACE(model);
        const Spaces selected = SelectedBy(input, model);
        EXPECT_FALSE(selected.empty());
        for (const std::string& space : selected) {
            EXPECT_EQ(allowed.count(space), 1U) << space;
        }
        if (isCalibrated && std::string_view(model) == "gray-calibrated") {
            EXPECT_EQ(selected.count("CIEBasedA"), 1U);
        }
    }
}

class SelectedSpaces : public testing::TestWithParam<const char*> {};

TEST_P(SelectedSpaces, AreThoseOfTheModel) {
    ExpectSpacesOfTheModels(CasePath(GetParam()), false);
}

INSTANTIATE_TEST_SUITE_P(Cases, SelectedSpaces,
                         testing::Values("default-spaces", "nchannel", "separation-exponential"),
                         NameOfCase());

class SheetSpaces : public testing::TestWithParam<const char*> {};

TEST_P(SheetSpaces, AreThoseOfTheModel) {
    Sheet sheet;
    ImageSheet(GetParam()).draw(sheet);
    const std::string_view name = GetParam();
    const bool isCalibrated = name.substr(0, 3) == "Icc" || name.substr(0, 3) == "Cal";
    ExpectSpacesOfTheModels(Job(sheet).Input(), isCalibrated);
}

INSTANTIATE_TEST_SUITE_P(Sheets, SheetSpaces,
                         testing::Values("IccGray", "IccRgb", "IccCmyk", "CalGray", "CalRgb", "Lab",
                                         "Separation", "DeviceN", "IndexedIcc", "IndexedSeparation",
                                         "Inline", "Stencils", "Masks"),
                         NameOfCase());

TEST(ModelsWithGaps, AreToldOf) {
    Sheet sheet;
    sheet.Draw("fill", "1 0 0 rg 0 0 1 1 re f");
    Job job(sheet);
    for (const char* model : {"gray-100", "gray-calibrated"}) {
        EXPECT_FALSE(job.Draw({"--color", model}).IsBlank());
        EXPECT_NE(job.errors.find("warning: --color " + std::string(model)), std::string::npos);
    }
}

}  // namespace
}  // namespace VANTIX::TEST
