// SPDX-License-Identifier: MIT
// What the colour models write, beside one another.
#include <algorithm>
#include <map>
#include <sstream>
#include <string_view>

#include "connectionspacedelegatefactory.h"
#include "devicenconnectionspacedelegate/devicenconnectionspacedelegate.h"
#include "grayscaleconnectionspacedelegate/grayscaleconnectionspacedelegate.h"
#include "rgbcompositeconnectionspacedelegate/rgbcompositeconnectionspacedelegate.h"
#include "support/delegatefixture.h"
#include "support/fakedictionary.h"
#include "support/fakeraster.h"

namespace VANTIX::TEST {
namespace {

using RENDERING::BaseConnectionSpaceDelegate;
using RENDERING::TDelegateType;
using SpacePtr = TInterfacePtr<COLOR::IConnectionColorSpace>;

/// Letters of models, and what these write.
using Written = std::vector<std::pair<std::string, std::string>>;

/// Reads "Rr rgb 1 0 0 | Gg gray 1": models, and what they write.
Written Read(std::string_view text) {
    Written written;
    while (!text.empty()) {
        const std::string_view part = text.substr(0, text.find(" | "));
        const std::size_t end = std::min(part.find(' '), part.size());
        written.emplace_back(part.substr(0, end), part.substr(std::min(end + 1, part.size())));
        text.remove_prefix(std::min(part.size() + 3, text.size()));
    }
    return written;
}

/// The models by letters, small ones for those that are colour-managed.
const std::map<char, TDelegateType> kTypes = {
    {'G', TDelegateType::kDeviceGray}, {'g', TDelegateType::kManagedGray},
    {'1', TDelegateType::kGray100},    {'Y', TDelegateType::kCalibratedGray},
    {'R', TDelegateType::kRGB},        {'r', TDelegateType::kManagedRGB},
    {'C', TDelegateType::kCMYK},       {'c', TDelegateType::kManagedCMYK},
    {'A', TDelegateType::kAsIs},       {'P', TDelegateType::kAsIsProcess},
    {'N', TDelegateType::kDeviceN},    {'n', TDelegateType::kManagedDeviceN}};

/// DeviceCMYK that knows under which intent it was last asked.
class Inks : public FakeDeviceSpace {
public:
    Inks() : FakeDeviceSpace("cmyk"_cc) {}

    static inline COLOR::TRenderingIntent intent{};

    bool FromPCS(const float pcs[3], float* values, COLOR::TRenderingIntent asked) const override {
        intent = asked;
        return FakeDeviceSpace::FromPCS(pcs, values, asked);
    }
};

template <class Ink>
class InkFactory : public FakeColorSpaceFactory {
public:
    COLOR::IConnectionColorSpace* CreateDeviceCMYKColorSpace() override { return new Ink; }
};

class ColourModels : public DelegateFixture {
protected:
    ColourModels() { factory->Offer<FakeFunctionFactory>(COLOR::CLSID_COLORFUNCTIONFACTORY); }

    /// The delegate of a model, as the plug-in makes it.
    TInterfacePtr<BaseConnectionSpaceDelegate> MakeBare(char model) {
        const auto maker = MakeObject<RENDERING::ConnectionSpaceDelegateFactory>();
        return TInterfacePtr<BaseConnectionSpaceDelegate>::Adopt(
            static_cast<BaseConnectionSpaceDelegate*>(
                maker->CreateConnectionSpaceDelegate(*factory, kTypes.at(model), options.Get())));
    }

    TInterfacePtr<BaseConnectionSpaceDelegate> Make(char model) { return Connect(MakeBare(model)); }

    /// What was written, in short: "cmyk 0.1 0.2 0.3 0.4".
    std::string Brief() {
        std::istringstream words(out->Take());
        std::string brief;
        for (std::string word; words >> word;) {
            if (word == "SetDeviceColorSpace" || word == "SetColor") {
                continue;
            }
            const std::size_t begin = word.rfind("Set", 0) == 0 ? 3 : 0;
            const std::size_t end = word.find("ColorSpace");
            brief += (brief.empty() ? "" : " ") +
                     word.substr(begin, end == std::string::npos ? end : end - begin);
        }
        return brief;
    }

    /// Calls `act` with the delegate of each model, and expects what it writes.
    template <class Act>
    void ExpectWritten(const char* written, const Act& act) {
        for (const auto& [models, expected] : Read(written)) {
            for (const char model : models) {
                const auto delegate = Make(model);
                act(*delegate);
                EXPECT_EQ(Brief(), expected) << model;
            }
        }
    }

    TInterfacePtr<FakeDictionary> options = MakeObject<FakeDictionary>();
};

template <class T, FourCC Family>
SpacePtr Of() {
    return MakeObject<T>(Family);
}

SpacePtr Spot(const char* name, const SpacePtr& alternate) {
    return MakeObject<FakeSeparationSpace>(name, alternate, nullptr);
}

SpacePtr Orange() {
    return Spot("Orange", MakeObject<FakeDeviceSpace>("rgb "_cc));
}

SpacePtr Black() {
    return Spot("Black", MakeObject<FakeDeviceSpace>("rgb "_cc));
}

template <class T>
SpacePtr Plates() {
    return Spot("", MakeObject<T>());
}

SpacePtr TwoInks() {
    auto space = MakeObject<FakeDeviceNSpace>();
    space->names.resize(2, CoreString("Ink"));
    space->components = 2;
    space->alternate = MakeObject<FakeDeviceSpace>("cmyk"_cc);
    return space;
}

constexpr auto kDeviceGray = Of<FakeDeviceSpace, "gray"_cc>;
constexpr auto kDeviceRgb = Of<FakeDeviceSpace, "rgb "_cc>;
constexpr auto kDeviceCmyk = Of<FakeDeviceSpace, "cmyk"_cc>;
constexpr auto kLab = Of<FakeCalibratedSpace, "clab"_cc>;
const std::vector<float> kFour{0.1F, 0.2F, 0.3F, 0.4F};
const std::vector<float> kFull{1};
const std::vector<float> kPaper{0};
const std::vector<float> kQuarter{0.25F};
const std::vector<float> kHalf{0.5F};
const std::vector<float> kThreeQuarters{0.75F};
const std::vector<float> kTwo{0.25F, 0.5F};
const std::vector<float> kThree{0.1F, 0.2F, 0.3F};

/// The number of a device space by its family; "none" stays.
std::string NumberOf(const std::string& family) {
    for (const FourCC code : {"gray"_cc, "rgb "_cc, "cmyk"_cc}) {
        if (static_cast<char>(code >> 24U) == family[0]) {
            return std::to_string(code);
        }
    }
    return family;
}

struct Colour {
    const char* name;
    SpacePtr (*space)();
    std::vector<float> color;
    const char* written;
    bool isPromoted = false;
};

// The fake host passes three components on and leaves the fourth ink full.
constexpr const char* kLight = "CcNn cmyk 0.9 0.8 0.7 1 | Rr rgb 0.1 0.2 0.3 | Gg1 gray 0.1";
constexpr const char* kFourInks =
    "APCN cmyk 0.9 0.8 0.7 0.6 | cn cmyk 0.9 0.8 0.7 1 | Rr rgb 0.1 0.2 0.3 | Gg1 gray 0.1";
constexpr const char* kOneGray = "APCcnRrGg1 gray 0.25 | N cmyk 0 0 0 0.75";

const Colour kColours[] = {
    {"Cmyk", kDeviceCmyk, kFour, kFourInks},
    {"CmykProfile", Of<FakeProfileSpace, "cmyk"_cc>, kFour, kFourInks},
    {"Rgb", kDeviceRgb, kThree, kLight},
    {"KeptRgb", kDeviceRgb, kThree, "AP rgb 0.1 0.2 0.3"},
    {"RgbProfile", Of<FakeProfileSpace, "rgb "_cc>, kThree, kLight},
    {"CalibratedRgb", Of<FakeCalibratedSpace, "crgb"_cc>, kThree, kLight},
    {"KeptCalibratedRgb", Of<FakeCalibratedSpace, "crgb"_cc>, kThree,
     "AP Calibrated crgb 0.1 0.2 0.3"},
    {"Lab", kLab, kThree, kLight},
    {"Gray", kDeviceGray, kQuarter, kOneGray},
    {"GrayProfile", Of<FakeProfileSpace, "gray"_cc>, kQuarter, kOneGray},
    {"PromotedGray", kDeviceGray, kQuarter,
     "C cmyk 0 0 0 1 | N cmyk 0 0 0 0.75 | cn cmyk 0.75 1 1 1 | Rr rgb 0.25 0 0", true},
    {"Spot", Orange, kHalf,
     "ANn Separation Orange 0.5 | PRr rgb 0.5 0 0 | Cc cmyk 0.5 1 1 1 | Gg1 gray 0.5"},
    {"PaperOfASpot", Orange, kPaper, "Cc cmyk 0 0 0 0 | Rr rgb 1 1 1 | G gray 1 | g1 gray 0"},
    {"BlackSpot", Black, kThreeQuarters,
     "Cc cmyk 0 0 0 0.75 | Rr rgb 0.25 0.25 0.25 | G gray 0.25 | g1 gray 0.75"},
    {"DeviceN", TwoInks, kTwo,
     "ANn DeviceN 0.25 0.5 | PCc cmyk 0.75 0.5 1 1 | Rr rgb 0.25 0.5 0 | Gg1 gray 0.25"},
    {"Registration", Plates<FakeRegistrationSpace>, kFull,
     "APNn Registration 1 | CcRrG Registration Registration 1 | g1 Registration gray 1"},
    {"None", Plates<FakeNoneSpace>, kFull, "APNn None 1 | CcRrG None None 1 | g1 None"},
};

class Colours : public ColourModels, public testing::WithParamInterface<Colour> {};

TEST_P(Colours, AreThoseOfTheModel) {
    const Colour& tested = GetParam();
    options->SetBool(108, tested.isPromoted);
    ExpectWritten(tested.written, [&](BaseConnectionSpaceDelegate& delegate) {
        Paint(delegate, tested.space(), tested.color);
    });
    EXPECT_EQ(log.Messages(), "");
    Paint(*Make('Y'), tested.space(), tested.color);
    EXPECT_EQ(out->Take(), "");
    EXPECT_EQ(log.Messages(), "Failed to set color space.\n");
}

INSTANTIATE_TEST_SUITE_P(Spaces, Colours, testing::ValuesIn(kColours),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(ColourModels, PatternsTakeTheComponentsOfTheSpaceThatWasSelected) {
    const std::pair<SpacePtr (*)(), const char*> kPatterns[] = {
        {kDeviceCmyk,
         "ACNn cmyk PatternColor P1.1 0.9 0.8 0.7 0.6 | R rgb PatternColor P1.1 0.1 0.2 0.3 | Gg "
         "gray PatternColor P1.1 0.1"},
        {kDeviceRgb, "CNn cmyk PatternColor P1.1 0.9 0.8 0.7 1"},
        {kDeviceGray, "CnRGg gray PatternColor P1.1 0.1 | N cmyk PatternColor P1.1 0 0 0 0.9 | Y"},
        {Orange,
         "ANn Separation Orange PatternColor P1.1 0.1 | P rgb PatternColor P1.1 0.1 0 0 | C cmyk "
         "PatternColor P1.1 0.9 1 1 1"},
        {TwoInks, "Nn DeviceN PatternColor P1.1 0.1 0.2"},
        {Plates<FakeRegistrationSpace>, "Nn Registration PatternColor P1.1 0.1"},
        {Plates<FakeNoneSpace>, "C None PatternColor P1.1 0.1"}};
    state->color = kFour;
    for (const auto& [underlying, written] : kPatterns) {
        ExpectWritten(written, [&, space = underlying()](BaseConnectionSpaceDelegate& delegate) {
            const bool isSet = delegate.SetUncoloredPattern("P1.1", space.Get(), true);
            EXPECT_EQ(isSet, !out->calls.empty());
        });
    }

    /// A spot whose full tint is dark.
    class Dark : public FakeSeparationSpace {
    public:
        Dark() : FakeSeparationSpace("Blue", nullptr, nullptr) {}

        bool ToPCS(const float* values, float pcs[3], COLOR::TRenderingIntent) const override {
            std::fill_n(pcs, 3, 1 - values[0]);
            return true;
        }
    };

    state->color = {1};
    Make('G')->SetUncoloredPattern("P1.1", MakeObject<Dark>().Get(), true);
    EXPECT_EQ(Brief(), "gray PatternColor P1.1 0");
    log.Clear();
    for (const char model : {'A', 'C', 'N', 'R', 'G'}) {
        EXPECT_FALSE(Make(model)->SetUncoloredPattern("P1.1", nullptr, true));
    }
    EXPECT_EQ(log.Count("Underlying colorspace of pattern color space can't be NULL!!!"), 5);
    EXPECT_EQ(out->Take(), "");
}

TEST_F(ColourModels, ShadingsAreConvertedOnlyWhereTheModelHasToo) {
    const std::pair<SpacePtr (*)(), const char*> kShadings[] = {
        {kDeviceCmyk, "ACN none | c cmyk | R rgb"},
        {Of<FakeProfileSpace, "cmyk"_cc>, "N cmyk"},
        {kDeviceRgb, "R none | r rgb | CN cmyk | G gray"},
        {kDeviceGray, "G none | gY gray | R rgb | N cmyk"},
        {Orange, "AN none | P rgb | C cmyk"},
        {TwoInks, "N none"},
        {[] { return SpacePtr(); }, "C cmyk"}};
    const auto axial = MakeObject<FakeAxialShading>();
    const auto lattice = MakeObject<FakeLatticeShading>();
    const auto coons = MakeObject<FakeTensorShading>();
    coons->coons = true;
    options->SetInt(103, 2);
    for (const auto& [colours, written] : kShadings) {
        axial->colours = lattice->colours = coons->colours = colours();
        for (const auto& [models, into] : Read(written)) {
            std::string wanted =
                "Shading 2 into @ level 2 paint\nShading 5 into @ level 2\n"
                "Shading 6 into @ level 2 paint\n";
            for (std::size_t at = 0; (at = wanted.find('@')) != std::string::npos;) {
                wanted.replace(at, 1, NumberOf(into));
            }
            for (const char model : models) {
                const auto delegate = Make(model);
                delegate->Init(false);
                delegate->FillWithColorSpace(axial.Get(), 1, 0, 0, 1, 1, true);
                delegate->FillWithColorSpace(lattice.Get(), 1, 0, 0, 1, 1, false);
                delegate->FillWithColorSpace(coons.Get(), 1, 0, 0, 1, 1, true);
                EXPECT_EQ(out->Take(), wanted) << model;
            }
        }
    }
    for (const char model : {'A', 'C', 'N'}) {
        log.Clear();
        Make(model)->FillWithColorSpace(nullptr, 1, 0, 0, 1, 1, true);
        EXPECT_EQ(log.Messages(), "");
        Make(model)->FillWithColorSpace(rgb.Get(), 1, 0, 0, 1, 1, true);
        EXPECT_TRUE(log.Has("there are only 7 shading types."));
    }
    EXPECT_EQ(out->Take(), "");
}

TEST_F(ColourModels, DefaultColourIsTheModelsAndWrittenOnlyWhenAskedFor) {
    constexpr const char* kDefaults =
        "Gg1Y DefaultColour gray | RrA DefaultColour rgb | CcNn DefaultColour cmyk";
    ExpectWritten(kDefaults, [this](BaseConnectionSpaceDelegate& delegate) {
        delegate.Init(false);
        EXPECT_FALSE(delegate.WasDefaultColourSet());
        EXPECT_EQ(out->Take(), "");
        delegate.Init(true);
        EXPECT_TRUE(delegate.WasDefaultColourSet());
        EXPECT_TRUE(delegate.CanMarkTheCanvas());
    });
}

TEST_F(ColourModels, ConversionsTakeTheStatesIntents) {
    factory->Offer<InkFactory<Inks>>(COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    for (const char model : {'C', 'c', 'N', 'n'}) {
        Inks::intent = {};
        Paint(*Make(model), rgb, {0, 0, 0});
        EXPECT_EQ(Inks::intent, model == 'n' ? state->intent : state->intent2) << model;
    }
}

TEST_F(ColourModels, PromotedGrayHasTheLuminanceOfTheConvertedColourInBlackAlone) {
    /// Gray in uneven inks.
    class UnevenInks : public Inks {
        bool FromPCS(const float pcs[3], float* values, COLOR::TRenderingIntent) const override {
            const float inks[] = {pcs[0], pcs[0] / 2, pcs[0] / 4, 0.8F};
            std::copy_n(inks, 4, values);
            return true;
        }
    };

    factory->Offer<InkFactory<UnevenInks>>(COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    options->SetBool(108, true);
    Paint(*Make('C'), gray, {0.5F});
    // 1 - (0.3 x 0.5 + 0.59 x 0.25 + 0.11 x 0.125) x 0.8
    EXPECT_EQ(Brief(), "cmyk 0 0 0 0.751");
}

TEST_F(ColourModels, WithoutASpaceOnlyPlainModelsTakeOneValue) {
    struct Spaceless {
        char model;
        const char* written;  ///< for one value
        const char* message;  ///< for several
        const char* file;
    };

    const Spaceless kCases[] = {
        {'R', "0.3 0.3 0.3", "There is colorspace currently set for non-stroking.\n",
         "src/rgbcompositeconnectionspacedelegate"},
        {'G', "0.3", "There is fill ConnectionColorSpace currently set.\n",
         "src/grayscaleconnectionspacedelegate"},
        {'C', "0 0 0 0.7",
         "There is no current fill colorspace and the valueCount received is > 1 (expecting a "
         "default fill colorspace of /DeviceGray.\n",
         "src/privatecmykcompositeconnectionspacedelegate"},
        {'r', "", "There is No Source Connection Color Space.\n",
         "src/rgbcompositeconnectionspacedelegate"},
        {'c', "", "There is No Source Connection Color Space.\n",
         "src/cmykcompositeconnectionspacedelegate"},
        {'g', "", "There is No Input ConnectionColorSace.\n",
         "src/grayscaleconnectionspacedelegate"},
        {'Y', "", "There is No Input ConnectionColorSace.\n",
         "src/grayscaleconnectionspacedelegate"},
        {'A', "", "", ""},
        {'N', "", "", ""},
        {'n', "", "", ""}};
    const float values[] = {0.3F, 0.3F, 0.3F, 0.3F};
    for (const Spaceless& tested : kCases) {
        SCOPED_TRACE(tested.model);
        state->space = nullptr;
        const auto delegate = Make(tested.model);
        EXPECT_EQ(delegate->SetColor(values, 1, true), *tested.written != 0);
        EXPECT_EQ(Brief(), tested.written);
        log.Clear();
        EXPECT_FALSE(delegate->SetColor(values, 4, true));
        EXPECT_EQ(log.Messages(), tested.message);
        EXPECT_TRUE(*tested.file == 0 || log.Entries().front().file == tested.file);
        state->space = rgb;
        EXPECT_FALSE(delegate->SetColor(nullptr, 3, true));
        delegate->SetGraphicsState(nullptr);
        EXPECT_FALSE(delegate->SetColor(values, 4, true));
        EXPECT_EQ(out->Take(), "");
    }
    state->space = rgb;
    EXPECT_FALSE(Make('C')->SetColor(values, 0, true));
    state->space = nullptr;
    log.Clear();
    EXPECT_FALSE(Make('R')->SetColor(values, 2, false));
    EXPECT_FALSE(Make('G')->SetColor(values, 2, false));
    EXPECT_EQ(log.Messages(),
              "There is colorspace currently set for stroking.\n"
              "There is stroke ConnectionColorSpace currently set.\n");
}

TEST_F(ColourModels, WithoutAnOutputContextNothingIsSet) {
    const float value = 0;
    for (const char model : {'A', 'C', 'N', 'R', 'G'}) {
        log.Clear();
        const auto delegate = MakeBare(model);
        delegate->SetGraphicsState(state.Get());
        delegate->Init(true);
        EXPECT_FALSE(delegate->SetColorSpace(gray.Get(), true)) << model;
        EXPECT_FALSE(delegate->SetColor(&value, 1, true)) << model;
        EXPECT_FALSE(delegate->SetUncoloredPattern("P1.1", gray.Get(), true)) << model;
        EXPECT_GE(log.Count("Expected to find an IPostScriptOutputContext."), 3) << model;
    }
}

TEST_F(ColourModels, CalibratedColoursAreLuminanceOfTheirWhite) {
    const auto light = MakeObject<FakeCalibratedSpace>("crgb"_cc);
    const float values[] = {0.9F, 0.25F, 0.1F};
    state->space = light;
    const std::pair<std::optional<std::array<float, 3>>, const char*> kWhites[] = {
        {{}, "CalibratedGray 0.9642 1 0.8249 0.25"},
        {{{0.9F, 0.5F, 0.8F}}, "CalibratedGray 0.9 0.5 0.8 0.5"},
        {{{0.9F, 0, 0.8F}}, "CalibratedGray 0.9 0 0.8 0"}};
    for (const auto& [white, written] : kWhites) {
        light->white = white;
        EXPECT_TRUE(Make('Y')->SetColor(values, 3, true));
        EXPECT_EQ(Brief(), written);
    }
}

TEST_F(ColourModels, WithoutADestinationNothingIsConverted) {
    state->space = cmyk;
    const float values[] = {0, 0, 0, 0};
    const auto bare = Connect(MakeObject<RENDERING::ColorManagedDeviceGrayConnectionSpaceDelegate>(
        *factory, nullptr, 0U));
    EXPECT_FALSE(bare->SetColor(values, 4, true));
    EXPECT_EQ(log.Messages(), "There is No Output ConnectionColorSace.\n");
    const auto light =
        Connect(MakeObject<RENDERING::RGBCompositeConnectionSpaceDelegate>(*factory, nullptr, 0U));
    EXPECT_FALSE(light->SetColor(values, 4, true));
    for (const auto& make : {RENDERING::CreateDeviceNConnectionSpaceDelegate,
                             RENDERING::CreateColorManagedDeviceNConnectionSpaceDelegate}) {
        const auto inks = Connect(TInterfacePtr<BaseConnectionSpaceDelegate>::Adopt(
            static_cast<BaseConnectionSpaceDelegate*>(make(*factory, nullptr, 0U))));
        state->space = rgb;
        EXPECT_FALSE(inks->SetColor(values, 3, true));
    }
    EXPECT_EQ(log.Count("Output ColorSpace can't be NULL here!!!"), 2);
    EXPECT_EQ(out->Take(), "");
}

TEST_F(ColourModels, RastersOfOtherKindsAreOnlyReported) {
    constexpr GUID kSecondRasterList = "CF5F605E-0E34-4CED-961B-F2CA7F42A186"_guid;
    const auto raster = MakeObject<FakeRaster>();
    const auto expect = [&](char model, std::int32_t depth, const char* message) {
        log.Clear();
        raster->bits = depth;
        Make(model)->WriteGreyscaleImage(*raster, 0, 0, 1, 1);
        EXPECT_EQ(log.Messages(), message);
    };
    expect('C', 8, "Unimplemented\n");
    expect('C', 16, "This is where we would do something with the color transformer.\n");
    EXPECT_EQ(log.Entries().back().type, LogType::kNotice);
    expect('C', 32, "Some thing un-implemented.\n");
    EXPECT_NE(log.Entries().back().type, LogType::kNotice);
    expect('N', 8, "Unimplemented.\n");
    raster->Aggregate(state.Get(), kSecondRasterList);
    expect('C', 16, "Unimplemented\n");
    log.Clear();
    Make('1')->Image(*raster, 0, 0, 1, 1);
    EXPECT_EQ(log.Messages(), "unimplemented\n");
}

}  // namespace
}  // namespace VANTIX::TEST
