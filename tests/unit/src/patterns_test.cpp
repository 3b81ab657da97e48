// SPDX-License-Identifier: MIT
#include <cstdio>
#include <fstream>
#include <limits>

#include "asiscompositeconnectionspacedelegate/asiscompositeconnectionspacedelegate.h"
#include "connectionspacedelegatefactory.h"
#include "pagefixture.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "psfontbuilderfactory.h"
#include "support/imagefixture.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

using Colour = std::array<int, 3>;
constexpr Colour kWhite{255, 255, 255};
constexpr Colour kRed{255, 0, 0};
constexpr Colour kGreen{0, 255, 0};
constexpr Colour kBlue{0, 0, 255};

/// Writes data in hexadecimal, whatever its filters.
class HexFilters : public FakeFilterStack {
public:
    const char* GetFilterName(std::int32_t /*index*/) const override { return "/ASCIIHexDecode"; }

    Status WriteFilteredData(const void* data, std::int32_t length) override {
        if (filters.empty()) {
            return Write(data, length);
        }
        std::string text;
        for (std::int32_t i = 0; i < length; ++i) {
            char digits[3];
            std::snprintf(digits, sizeof digits, "%02x", static_cast<const std::uint8_t*>(data)[i]);
            text += digits;
        }
        return Write(text.data(), static_cast<std::int32_t>(text.size()));
    }

    Status EndFilteredData() override { return Write(">", filters.empty() ? 0 : 1); }
};

/// Puts a shading on the operand stack, black to red from left to right, unless it is null.
class ShadingDelegate : public RENDERING::AsIsCompositeConnectionSpaceDelegate {
public:
    /// Whether shadings have data of their own.
    static inline bool mesh = false;

    using AsIsCompositeConnectionSpaceDelegate::AsIsCompositeConnectionSpaceDelegate;

    void FillWithColorSpace(COLOR::IConnectionColorSpace* shading, ResourceId /*id*/, float /*x*/,
                            float /*y*/, float /*width*/, float /*height*/, bool paint) override {
        if (shading != nullptr && mesh) {
            OutputContext()->WriteStreamData("%mesh\n", 6);
        }
        if (shading != nullptr) {
            OutputContext()->WriteColorSpaceResourceName(
                "<</ShadingType 2/ColorSpace/DeviceRGB/Coords[0 0 100 0]/Function<</FunctionType 2"
                "/Domain[0 1]/C0[0 0 0]/C1[1 0 0]/N 1>> >>" +
                    std::string(paint ? " shfill" : ""),
                false);
        }
    }
};

class ShadingDelegateFactory : public TObject<RENDERING::IConnectionSpaceDelegateFactory> {
public:
    RENDERING::IConnectionSpaceDelegate* CreateConnectionSpaceDelegate(
        IClassFactory& factory, RENDERING::TDelegateType /*type*/,
        const IO::IDictionary* /*options*/) const override {
        return new ShadingDelegate(factory, 0);
    }
};

/// Makes no builders: resident fonts need none.
class PlainBuilderFactory : public TObject<PS::IPSFontBuilderFactory> {
public:
    GRAPHICS::IFontBuilder* CreatePSFontBuilder(IClassFactory& /*factory*/,
                                                GRAPHICS::IFontPackageHandler* /*handler*/,
                                                IO::IPacketDataProvider& /*packet*/,
                                                const char* /*name*/,
                                                PS::TPSFontType /*type*/) override {
        return nullptr;
    }
};

/// A page of 100 by 100 and patterns on it.
class Patterns : public PageFixture {
protected:
    Patterns() {
        factory->Offer<ShadingDelegateFactory>(RENDERING::CLSID_CONNECTIONSPACEDELEGATEFACTORY);
        factory->Offer<HexFilters>(IO::IID_IOUTPUTFILTERSTACK);
        factory->Offer<FakeStateStack>(GRAPHICS::CLSID_MUTABLEGRAPHICSSTATESTACK);
        cell->draw = [this](GRAPHICS::IConnectionSpace& to) {
            In(to).Use("rgb "_cc, rgb, {1, 0, 0});
            In(to).Rectangle(0, 0, 5);
        };
        tile->cell = cell;
    }

    void Start() {
        PageFixture::Start();
        space->SaveInitialPageMatrix();
    }

    /// Fills the page with `pattern`.
    void Cover(ResourceId id, const TInterfacePtr<COLOR::IConnectionColorSpace>& pattern,
               std::vector<float> color = {}) {
        front->Use(id, pattern, std::move(color));
        front->Rectangle(0, 0, 100);
    }

    /// What was written, once an interpreter has drawn it.
    std::string Drawn() {
        std::string text = page->Take();
        const TemporaryFolder folder;
        std::ofstream(folder.File("page.ps"), std::ios::binary)
            << "%!PS\n<</PageSize[100 100]>> setpagedevice\n"
            << text << "\nshowpage\n";
        auto drawn = DrawPages(folder.File("page.ps"), {});
        EXPECT_EQ(drawn.complaint, "") << text;
        image = drawn.pages.empty() ? PageImage{} : drawn.pages[0];
        EXPECT_EQ(image.width, 100U);
        return text;
    }

    /// The colour of the pixel over the point (x, y).
    [[nodiscard]] Colour At(std::size_t x, std::size_t y) const {
        return image.width != 100
                   ? Colour{}
                   : Colour{image.At(x, 99 - y, 0), image.At(x, 99 - y, 1), image.At(x, 99 - y, 2)};
    }

    /// The name of the pattern `id`, or "none".
    std::string Name(ResourceId id) const {
        const char* name = space->GetPostScriptResourceName(id);
        return name == nullptr ? "none" : name;
    }

    PageImage image;
};

TEST_F(Patterns, CellsLieAtTheMatrixOfThePageWhateverIsInForce) {
    Start();
    tile->matrix = {2, 0, 0, 2, 4, 4};
    space->SaveGraphicsState();
    space->Concat(3, 0, 0, 3, 50, 50);
    space->AddColorSpace(tile.Get(), 7);
    space->RestoreGraphicsState();
    Cover(7, tile);
    Cover(7, tile);
    const std::string text = Drawn();
    EXPECT_EQ(Count(text, "/Pattern setcolorspace"), 1U);
    EXPECT_EQ(Count(text, "makepattern"), 1U);
    EXPECT_EQ(At(3, 50), kWhite);
    for (const std::size_t x : {4U, 13U, 24U, 93U}) {
        EXPECT_EQ(At(x, 24), kRed) << x;
        EXPECT_EQ(At(x, 14), kWhite) << x;
    }
    EXPECT_EQ(At(14, 24), kWhite);
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(Patterns, GroupsAreWhereTheirPatternsStartFrom) {
    Start();
    space->mGroupDepth = 1;
    Cover(7, tile);
    EXPECT_THAT(Drawn(), HasSubstr("gsave initmatrix [1 0 0 1 0 0] makepattern"));
    EXPECT_EQ(At(4, 4), kRed);
}

TEST_F(Patterns, AllKindsShareTheNumbersOfTheirNames) {
    Start();
    const auto shading = MakeObject<FakeShadingPattern>();
    shading->shading = rgb;
    shading->matrix = {0.5, 0, 0, 1, 0, 0};
    space->AddColorSpace(shading.Get(), 4);
    space->AddColorSpace(shading.Get(), 5);
    space->AddColorSpace(tile.Get(), 6);
    const auto number = [this](ResourceId id) { return std::stoull(Name(id).substr(1)); };
    EXPECT_EQ(number(5), number(4) + 1);
    EXPECT_EQ(number(6), number(4) + 2);
    EXPECT_EQ(Name(6), "P" + std::to_string(number(6)) + ".6");
    Cover(4, shading);
    Drawn();
    EXPECT_NEAR(At(25, 50)[0], 128, 4);
    EXPECT_EQ(At(25, 50)[1], 0);
    EXPECT_EQ(At(75, 50), kWhite);
}

TEST_F(Patterns, CellsBeginWithTheStateOfAPage) {
    Start();
    cell->draw = [this](GRAPHICS::IConnectionSpace& to) {
        Front& in = In(to);
        in.Use("rgb "_cc, rgb, {1, 0, 0});
        in.delegate->MoveTo(5, 0);
        const float end[] = {5, 10};
        in.delegate->LineTo(end, 1);
        in.delegate->Stroke();
    };
    const float dash[] = {1, 9};
    space->SetLineWidth(8);
    space->SetDash(0, dash, 2);
    space->SetOverprintState(true);
    Cover(7, tile);
    Drawn();
    EXPECT_EQ(At(15, 12), kRed);
    EXPECT_EQ(At(15, 18), kRed);
    EXPECT_EQ(At(12, 15), kWhite);
}

class PatternImages : public Patterns, public ::testing::WithParamInterface<std::int32_t> {};

TEST_P(PatternImages, DataGoAheadOfThePattern) {
    policy->SetInt(103, GetParam());
    Start();
    FakeRaster raster;
    raster.width = 2;
    raster.space = rgb;
    raster.Plane({255, 0});
    raster.Plane({0, 255});
    raster.Plane({0, 0});
    FakeRaster missing;
    missing.space = rgb;
    cell->draw = [&](GRAPHICS::IConnectionSpace& to) {
        Front& in = In(to);
        in.delegate->DrawImage(&missing, 0, 0, 1, 1);
        in.delegate->DrawImage(&raster, 0, 10, 10, -5);
        in.delegate->DrawImage(&raster, 0, 0, 5, 5);
    };
    Cover(7, tile);
    const auto second = MakeObject<FakeTilePattern>();
    second->cell = cell;
    space->AddColorSpace(second.Get(), 8);
    const std::string text = Drawn();
    EXPECT_THAT(text, HasSubstr("/ImageData4 "));
    EXPECT_THAT(text, Not(HasSubstr("/ImageData5 ")));
    EXPECT_LT(text.find("/ImageData2 "), text.find("/PatternType"));
    EXPECT_EQ(Count(text, "%START OF"), Count(text, "%END OF"));
    EXPECT_EQ(At(14, 27), kRed);
    EXPECT_EQ(At(16, 27), kGreen);
    EXPECT_EQ(At(11, 22), kRed);
    EXPECT_EQ(At(14, 22), kGreen);
    EXPECT_EQ(At(17, 22), kWhite);
}

INSTANTIATE_TEST_SUITE_P(Levels, PatternImages, ::testing::Values(2, 3));

TEST_F(Patterns, ShadingsAreMadeInTheCellAndTheirDataAheadOfIt) {
    policy = nullptr;
    Start();
    const auto shading = MakeObject<FakeShadingPattern>();
    shading->shading = rgb;
    cell->draw = [&](GRAPHICS::IConnectionSpace& to) {
        Front& in = In(to);
        in.delegate->SaveGraphicsState();
        in.delegate->Concat(0.1F, 0, 0, 0.1F, 0, 0);
        in.delegate->FillWithColorSpace(rgb.Get(), 3, 0, 0, 10, 10);
        in.delegate->RestoreGraphicsState();
        in.delegate->AddColorSpace(shading.Get(), 4);
        in.Use(4, shading, {});
        in.Rectangle(0, 0, 5);
    };
    ShadingDelegate::mesh = true;
    space->AddColorSpace(tile.Get(), 7);
    ShadingDelegate::mesh = false;
    Cover(7, tile);
    const std::string text = Drawn();
    EXPECT_LT(text.rfind("%mesh"), text.find("/PatternType 1"));
    EXPECT_EQ(Count(text, "%mesh"), 2U);
    EXPECT_GT(At(18, 18)[0], 200);
    EXPECT_LT(At(11, 18)[0], 60);
    EXPECT_LT(At(14, 12)[0], 20);
}

class UncolouredCells : public Patterns, public ::testing::WithParamInterface<bool> {};

TEST_P(UncolouredCells, LeaveTheColourToTheirUse) {
    policy = GetParam() ? policy : nullptr;
    if (policy) {
        policy->SetBool(101, true);
    }
    Start();
    FakeRaster picture;
    picture.width = 1;
    picture.space = gray;
    picture.Plane({0});
    FakeRaster shape;
    shape.width = 2;
    shape.bits = 1;
    shape.space = MakeObject<FakeIndexedSpace>(rgb, Line{0, 255, 0, 0, 255, 0});
    shape.Plane({0x40});
    shape.primaries[0]->bits = 1;
    shape.Extra("LPHA"_cc, {0x40}).bits = 1;
    cell->draw = [&](GRAPHICS::IConnectionSpace& to) {
        Front& in = In(to);
        in.own->fillOverprint = true;
        in.Use("rgb "_cc, rgb, {0, 1, 0});
        in.delegate->SelectRenderingIntent(COLOR::TRenderingIntent::kSaturation);
        in.delegate->SelectRenderingIntent2(COLOR::TRenderingIntent::kSaturation);
        in.delegate->SetOverprintState(true);
        in.delegate->FillWithColorSpace(rgb.Get(), 3, 0, 0, 10, 10);
        in.delegate->DrawImage(&picture, 0, 0, 10, 10);
        in.delegate->DrawImage(&shape, 0, 5, 10, 5);
        in.Rectangle(0, 0, 5);
    };
    tile->paintType = 2;
    tile->underlying = rgb;
    Cover(7, tile, {1, 0, 0});
    front->Use(7, tile, {0, 0, 1});
    front->Rectangle(50, 0, 50);
    const std::string text = Drawn();
    const std::string procedure = text.substr(0, text.find("makepattern"));
    for (const char* refused : {" setcolor\n", "setcolorspace\n{", "overprint", "render", "shfill",
                                "/DeviceGray", "DeviceRGB setcolorspace\n<<"}) {
        EXPECT_THAT(procedure.substr(procedure.find("/PaintProc")), Not(HasSubstr(refused)));
    }
    EXPECT_EQ(At(12, 12), kRed);
    EXPECT_EQ(At(17, 12), kWhite);
    EXPECT_EQ(At(12, 17), kWhite);
    EXPECT_EQ(At(17, 17), kRed);
    EXPECT_EQ(At(62, 12), kBlue);
    EXPECT_EQ(At(67, 17), kBlue);
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutPdfmarks, UncolouredCells, ::testing::Bool());

TEST_F(Patterns, PatternsInACellStartFromTheCellAndAreNotKnownOutside) {
    Start();
    const auto outer = MakeObject<FakeTilePattern>();
    outer->cell = MakeObject<FakeCell>();
    outer->bounds = {-3, -3, 30, 30};
    outer->steps = {30, 30};
    outer->matrix = {1, 0, 0, 1, 7, 7};
    tile->matrix = {1, 0, 0, 1, 1, 1};
    outer->cell->draw = [this](GRAPHICS::IConnectionSpace& to) {
        Front& in = In(to);
        in.delegate->Concat(1, 0, 0, 1, 3, 0);
        in.Use(8, tile, {});
        in.Rectangle(0, 0, 20);
    };
    space->AddColorSpace(outer.Get(), 7);
    EXPECT_EQ(Name(8), "none");
    Cover(7, outer);
    front->Use(8, tile, {});
    front->Rectangle(80, 80, 20);
    EXPECT_EQ(Count(Drawn(), ".8<<"), 2U);
    EXPECT_EQ(At(10, 8), kRed);  // the edge of the cell's rectangle, in the first square
    EXPECT_EQ(At(12, 12), kRed);
    EXPECT_EQ(At(13, 12), kWhite);
    EXPECT_EQ(At(48, 38), kRed);
    EXPECT_EQ(At(9, 8), kWhite);
    EXPECT_EQ(At(31, 8), kWhite);
    EXPECT_EQ(At(81, 81), kRed);
    EXPECT_EQ(At(86, 86), kWhite);
}

TEST_F(Patterns, NamesOfSpacesThatACellDefinesAreDefinedAgainOutside) {
    Start();
    cell->draw = [&](GRAPHICS::IConnectionSpace& to) {
        In(to).Use(9, spot, {1});
        In(to).delegate->RegisterColorSpaceUse(9);
        In(to).Rectangle(0, 0, 5);
        In(to).Rectangle(5, 5, 5);
    };
    Cover(7, tile);
    front->Use(9, spot, {1});
    front->Rectangle(90, 0, 5);
    const std::string text = Drawn();
    EXPECT_EQ(Count(text, "[/Separation (Gold)"), 2U);
    EXPECT_EQ(At(7, 7), (Colour{0, 0, 0}));
    EXPECT_EQ(At(92, 2), (Colour{0, 0, 0}));
}

TEST_F(Patterns, LongPathsAreCutAndWhatIsLeftOpenIsClosed) {
    Start();
    cell->draw = [this](GRAPHICS::IConnectionSpace& to) {
        Front& in = In(to);
        in.Use("rgb "_cc, rgb, {1, 0, 0});
        in.delegate->MoveTo(0, 0);
        for (int i = 0; i < 10000; ++i) {
            const float point[] = {i % 2 == 0 ? 5.0F : 0.0F, static_cast<float>(i) / 2000};
            in.delegate->LineTo(point, 1);
        }
        in.delegate->Stroke();
        in.delegate->MoveTo(1, 1);
        in.delegate->MoveTo(2, 2);
        in.delegate->BeginTextObject();
        in.delegate->MoveTo(3, 3);
    };
    Cover(7, tile);
    const std::string text = Drawn();
    EXPECT_EQ(Count(text, "}exec\n{"), 2U);
    EXPECT_EQ(Count(text, "}exec\n%%BeginTextObject\n{"), 1U);
    EXPECT_EQ(At(12, 12), kRed);
}

TEST_F(Patterns, CellsShowTextInFontsOfTheDocument) {
    const auto font = MakeObject<ListedFont>("Helvetica", GRAPHICS::TFontType::kType1, false);
    const auto broker = MakeObject<FakeFontBroker>();
    broker->fonts = {font};
    factory->creators[GRAPHICS::IID_IBASECONNECTIONSPACE] = [broker] {
        auto made = MakeObject<Front>();
        made->Aggregate(broker.Get(), GRAPHICS::IID_IFONTBROKER);
        return made.Detach();
    };
    factory->Offer<PlainBuilderFactory>(PS::CLSID_PSFONTBUILDERFACTORY);
    Start();
    tile->matrix = {5, 0, 0, 5, 0, 0};
    cell->draw = [&](GRAPHICS::IConnectionSpace& to) {
        Front& in = In(to);
        in.Use("rgb "_cc, rgb, {1, 0, 0});
        in.delegate->BeginTextObject();
        in.delegate->SelectCurrentFont();
        const float matrix[] = {1, 0, 0, 1, 0, 0};
        const std::string letters(200, 'H');
        for (int i = 0; i < 100; ++i) {
            in.delegate->GetCurrentTextObject()->SetTextMatrix(matrix);
            in.delegate->DrawTextW(letters.data(), 200);
        }
        in.delegate->EndTextObject();
        in.delegate->NewPath();
    };
    Cover(7, tile);
    const std::string text = Drawn();
    EXPECT_EQ(Count(text, "}exec\n{"), 9U) << "no procedure is too long";
    EXPECT_EQ(Count(text, "}exec\n%%EndTextObject\n"), 1U);
    EXPECT_EQ(At(56, 10), kRed) << "the stem of a letter";
    EXPECT_EQ(At(68, 5), kWhite);
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(Patterns, CellsThatPaintWithThemselvesComeToAnEnd) {
    Start();
    cell->draw = [this](GRAPHICS::IConnectionSpace& to) {
        In(to).Use(7, tile, {});
        In(to).Rectangle(0, 0, 5);
    };
    Cover(7, tile);
    EXPECT_THAT(log.Messages(), HasSubstr("paints with its own pattern"));
    EXPECT_EQ(Count(Drawn(), "makepattern"), 1U);

    // Another cell each time.
    log.Clear();
    int cells = 0;
    std::function<TInterfacePtr<FakeTilePattern>()> make = [&] {
        auto next = MakeObject<FakeTilePattern>();
        next->cell = MakeObject<FakeCell>();
        next->cell->draw = [&](GRAPHICS::IConnectionSpace& to) {
            In(to).Use(static_cast<ResourceId>(100 + ++cells), make(), {});
            In(to).Rectangle(0, 0, 5);
        };
        return next;
    };
    Cover(8, make());
    EXPECT_EQ(cells, 28);
    EXPECT_THAT(log.Messages(), HasSubstr("nested too deeply"));
    EXPECT_EQ(Count(Drawn(), "makepattern"), 28U);
}

TEST_F(Patterns, NumbersThatStopAnInterpreterAreRefused) {
    Start();
    const float infinite = std::numeric_limits<float>::infinity();
    const std::vector<std::function<void(FakeTilePattern&)>> faults = {
        [](FakeTilePattern& bad) { bad.steps[1] = 0; },
        [](FakeTilePattern& bad) { bad.bounds[2] = 0; },
        [](FakeTilePattern& bad) { bad.bounds[3] = -10; },
        [](FakeTilePattern& bad) { bad.matrix = {1, 1, 1, 1, 0, 0}; },
        [](FakeTilePattern& bad) { bad.matrix = {1e-9F, 0, 0, 1e-9F, 0, 0}; },
        [=](FakeTilePattern& bad) { bad.matrix[4] = infinite; },
        [=](FakeTilePattern& bad) { bad.bounds[0] = infinite; },
        [](FakeTilePattern& bad) { bad.bounds[0] = 1e30F; },
        [](FakeTilePattern& bad) { bad.bounds[2] = 1e30F; },
        [](FakeTilePattern& bad) {
            bad.steps = {1e-2F, 1e-2F};
        },
        [](FakeTilePattern& bad) { bad.cell->status = STATUS::kNotImplemented; },
        [](FakeTilePattern& bad) { bad.cell = nullptr; },
    };
    for (const auto& fault : faults) {
        auto bad = MakeObject<FakeTilePattern>();
        bad->cell = MakeObject<FakeCell>();
        fault(*bad);
        Cover(7, bad);
        EXPECT_EQ(Name(7), "none");
    }
    const auto shading = MakeObject<FakeShadingPattern>();  // without a dictionary
    space->AddColorSpace(shading.Get(), 8);
    shading->shading = rgb;
    shading->matrix = {};
    space->AddColorSpace(shading.Get(), 9);
    EXPECT_EQ(Count(log.Messages(), "Either No Pattern Resource"), faults.size());
    EXPECT_EQ(Count(log.Messages(), "Unable to craete the Shading"), 2U);
    tile->steps[0] = -10;
    Cover(10, tile);
    EXPECT_EQ(Count(Drawn(), "makepattern"), 1U);
    EXPECT_EQ(At(2, 2), kRed);
}

TEST_F(Patterns, WithoutWhatARecorderNeedsThereIsNoPattern) {
    Start();
    for (const GUID& missing :
         {GRAPHICS::IID_IBASECONNECTIONSPACE, GRAPHICS::CLSID_MUTABLEGRAPHICSSTATESTACK}) {
        const auto creator = factory->creators[missing];
        factory->creators.erase(missing);
        EXPECT_NE(space->CreateTilePatternDictionary(tile.Get(), 7), STATUS::kOk);
        EXPECT_THAT(log.Messages(), HasSubstr("Unable to create PostScriptConnectionSpace."));
        factory->creators[missing] = creator;
        log.Clear();
    }
    EXPECT_NE(space->CreateShadingPatternDictionary(nullptr, 7), STATUS::kOk);
    EXPECT_EQ(log.Messages(), "Shading Pattern Color Space can't be NULL!!!\n");
    space = MakeObject<OpenSpace>();
    EXPECT_NE(space->CreateTilePatternDictionary(tile.Get(), 7), STATUS::kOk);
    EXPECT_NE(space->CreateShadingPatternDictionary(MakeObject<FakeShadingPattern>().Get(), 7),
              STATUS::kOk);
    EXPECT_THAT(log.Messages(), HasSubstr("No Connection Space Delegate installed!!!"));
}

TEST_F(Patterns, TheTilingFlagKeepsPdfmarksOutOfCells) {
    policy->SetBool(101, true);
    cell->draw = [this](GRAPHICS::IConnectionSpace& to) {
        In(to).own->fillAlpha = 0.5F;
        In(to).Use("rgb "_cc, rgb, {1, 0, 0});
        In(to).Rectangle(0, 0, 5);
    };
    for (const std::uint8_t flag : std::array<std::uint8_t, 2>{0, 1}) {
        policy->SetByte(112, flag);
        space = MakeObject<OpenSpace>();
        Start();
        Cover(7, tile);
        EXPECT_EQ(Count(page->Take(), "/SetTransparency"), flag == 0 ? 1U : 0U);
    }
}

}  // namespace
}  // namespace VANTIX::TEST
