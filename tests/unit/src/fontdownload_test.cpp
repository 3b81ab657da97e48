// SPDX-License-Identifier: MIT
#include <algorithm>

#include "gmock/gmock.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "psfontbuilderfactory.h"
#include "support/fakebaseconnectionspace.h"
#include "support/fakedictionary.h"
#include "support/fakefactory.h"
#include "support/fakefonts.h"
#include "support/memoryprovider.h"
#include "support/recordinglogger.h"

namespace VANTIX::TEST {
namespace {

using GRAPHICS::TFontType;
using PS::TPSFontType;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

/// Writes a line for each font; the name decides what fails.
class FakeFontBuilder : public TObject<GRAPHICS::IFontBuilder> {
public:
    TPSFontType type = TPSFontType::kNone;

    bool Init(GRAPHICS::IFontPackageHandler* handler, const char* name,
              IO::IPacketDataProvider& packet) override {
        mSource = handler->GetName();
        mName = name;
        mStream = TInterfacePtr<PS::IPostScriptDataStream>::Adopt(
            PS::CreatePostscriptDataStream(&packet));
        return true;
    }

    bool BuildFont() override {
        *mStream
            << ("build " + std::to_string(static_cast<int>(type)) + ' ' + mName + '\n').c_str();
        return mSource != "Broken" &&
               FindInterface<IObject>(this, GRAPHICS::CLSID_POSTSCRIPTCONNECTIONSPACE) != nullptr;
    }

    bool DefineFont(GRAPHICS::IFontPackageHandler* /*handler*/, const char* name) override {
        *mStream << ("define " + std::string(name) + " from " + mName + '\n').c_str();
        return mSource != "Broken";
    }

    const char* GetFontName() const override { return mName.c_str(); }

    PS::IPostScriptDataStream* GetStream() override { return mStream.Get(); }

private:
    std::string mSource;
    std::string mName;
    TInterfacePtr<PS::IPostScriptDataStream> mStream;
};

class FakeBuilderFactory : public TObject<PS::IPSFontBuilderFactory> {
public:
    GRAPHICS::IFontBuilder* CreatePSFontBuilder(IClassFactory& /*factory*/,
                                                GRAPHICS::IFontPackageHandler* handler,
                                                IO::IPacketDataProvider& packet, const char* name,
                                                TPSFontType type) override {
        if (std::string_view(handler->GetName()) == "Refused" ||
            FindInterface<IObject>(this, IID_CLASSFACTORY) == nullptr ||
            FindInterface<IObject>(this, IO::IID_IPOSTSCRIPTPOLICYDICT) == nullptr) {
            return nullptr;
        }
        auto builder = MakeObject<FakeFontBuilder>();
        builder->type = type;
        builder->Init(handler, name, packet);
        return builder.Detach();
    }
};

class FontDownload : public ::testing::Test {
protected:
    FontDownload() {
        log.Clear();
        factory->OfferObject(GRAPHICS::IID_IBASECONNECTIONSPACE, base.Get());
        factory->Offer<FakeBuilderFactory>(PS::CLSID_PSFONTBUILDERFACTORY);
        base->state = state.Get();
        base->Aggregate(broker.Get(), GRAPHICS::IID_IFONTBROKER);
        state->fontName = "Unknown";
    }

    void SetUp() override {
        ASSERT_TRUE(space->Init(page.Get(), factory.Get(), policy.Get()));
        log.Clear();
    }

    TInterfacePtr<ListedFont> Add(const char* name, TFontType type, bool isEmbedded = true) {
        broker->fonts.push_back(MakeObject<ListedFont>(name, type, isEmbedded));
        return broker->fonts.back();
    }

    std::string Downloaded() {
        EXPECT_TRUE(space->DownloadFonts(base.Get()));
        return page->Take();
    }

    std::string Name(ListedFont& font) {
        char name[256];
        space->GetPSFontName(&font, name);
        const std::string_view expression = name;
        return std::string(expression.substr(1, expression.rfind(')') - 1));
    }

    RecordingLogger& log = RecordingLogger::Get();
    TInterfacePtr<FakeFactory> factory = MakeObject<FakeFactory>();
    TInterfacePtr<FakeDictionary> policy = MakeObject<FakeDictionary>();
    TInterfacePtr<MemoryProvider> page = MakeObject<MemoryProvider>();
    TInterfacePtr<FakeTextState> state = MakeObject<FakeTextState>();
    TInterfacePtr<FakeFontBroker> broker = MakeObject<FakeFontBroker>();
    TInterfacePtr<FakeBaseConnectionSpace> base = MakeObject<FakeBaseConnectionSpace>();
    TInterfacePtr<PS::PostScriptConnectionSpace> space =
        MakeObject<PS::PostScriptConnectionSpace>();
};

TEST_F(FontDownload, EqualProgramsAreBuiltOnceAndTheRestIsDefinedBehindThem) {
    const auto first = Add("ABCDEF+Foo", TFontType::kType1);
    const auto other = Add("ABCDEF+Foo", TFontType::kType1);
    const auto second = Add("ABCDEF+Foo", TFontType::kType1);
    const auto cff = Add("ABCDEF+Foo", TFontType::kCFF);
    first->WithData("program");
    other->WithData("Program");
    second->WithData("program");
    cff->WithData("program");
    const std::string name = Name(*first);
    EXPECT_EQ(name, "Unknown");
    const std::string text = Downloaded();
    EXPECT_THAT(Name(*first), MatchesRegex("[A-Z]{6}[+]Foo"));
    EXPECT_EQ(text, "build 1 " + Name(*first) + "\ndefine " + Name(*second) + " from " +
                        Name(*first) + "\nbuild 1 " + Name(*other) + "\nbuild 8 " + Name(*cff) +
                        '\n');
    EXPECT_EQ(Downloaded(), "");
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(FontDownload, ResidentFontsKeepTheirNamesUntilTheirEncodingChanges) {
    const auto plain = Add("Times (Roman)", TFontType::kType1, false);
    const auto changed = Add("Helvetica", TFontType::kType1, false);
    const auto again = Add("Helvetica", TFontType::kType1, false);
    changed->differences = {{128, "Euro"}};
    again->differences = {{128, "bullet"}};
    const std::string text = Downloaded();
    EXPECT_EQ(Name(*plain), "Times #28Roman#29");
    EXPECT_THAT(Name(*changed), MatchesRegex("[A-Z]{6}[+]Helvetica"));
    EXPECT_EQ(text, "define " + Name(*changed) + " from Helvetica\ndefine " + Name(*again) +
                        " from Helvetica\n");
}

TEST_F(FontDownload, Type3FontsComeLastAndEndTheirFamily) {
    const auto drawn = Add("Z", TFontType::kType1);
    const auto type3 = Add("A", TFontType::kType3);
    const auto behind = Add("B", TFontType::kType1);

    struct Single : FakeFontBroker {
        TInterfacePtr<FakeFontBroker> last = MakeObject<FakeFontBroker>();

        void EnumerateFontFamilies(GRAPHICS::IFamilyFunctor& functor) override {
            EXPECT_TRUE(functor(nullptr));
            FakeFontBroker::EnumerateFontFamilies(functor);
            last->EnumerateFontFamilies(functor);
        }
    };

    const auto both = MakeObject<Single>();
    both->fonts = broker->fonts;
    const auto last = MakeObject<ListedFont>("Last", TFontType::kType1, true);
    both->last->fonts = {nullptr, last};
    base->Aggregate(both.Get(), GRAPHICS::IID_IFONTBROKER);
    const std::string text = Downloaded();
    EXPECT_EQ(text, "build 1 " + Name(*drawn) + "\nbuild 1 " + Name(*last) + "\nbuild 3 " +
                        Name(*type3) + '\n');
    EXPECT_EQ(Name(*behind), "Unknown");
    EXPECT_EQ(log.Messages(), "No font package handler on the font.\n");
}

TEST_F(FontDownload, AFontThatFailsIsLeftToTheInterpreter) {
    const auto broken = Add("Broken", TFontType::kType1);
    const auto refused = Add("Refused", TFontType::kType1);
    const auto resident = Add("Broken", TFontType::kType1, false);
    resident->differences = {{128, "Euro"}};
    const auto good = Add("Good", TFontType::kType1);
    broker->fonts.push_back(good);
    const std::string text = Downloaded();
    EXPECT_THAT(text, StartsWith("build 1 " + Name(*good) + '\n'));
    EXPECT_THAT(text, Not(HasSubstr("Broken"))) << "half a font would not parse";
    EXPECT_EQ(Name(*broken), "Broken");
    EXPECT_EQ(Name(*refused), "Unknown");
    EXPECT_EQ(Name(*resident), "Broken");
    EXPECT_EQ(log.Count("Failed to build a font for postscript!"), 1);
    EXPECT_EQ(log.Count("Failed to define a font for postscript!"), 1);
    EXPECT_EQ(log.Count("SANITY Check : Fontpackage handler already exists"), 1);
}

TEST_F(FontDownload, NeedsABrokerAndAFactory) {
    EXPECT_FALSE(space->DownloadFonts(nullptr));
    EXPECT_EQ(log.Messages(), "No font broker found while downloading the fonts!\n");
    factory->creators.erase(PS::CLSID_PSFONTBUILDERFACTORY);
    EXPECT_FALSE(space->DownloadFonts(base.Get()));
    EXPECT_TRUE(log.Has("fontBuilderFactory did not create a font builder."));
}

TEST_F(FontDownload, SelectingAFontDownloadsAllAndSetsIt) {
    const auto font = Add("Foo", TFontType::kType1);
    state->fontName = "Foo";
    space->SelectCurrentFont();
    const std::string name = Name(*font);
    const std::string select = '(' + name + ") cvn findfont [10 0 0 10 0 0] makefont setfont\n";
    EXPECT_EQ(page->Take(), "build 1 " + name + '\n' + select);
    space->SelectCurrentFont();
    EXPECT_EQ(page->Take(), select);
}

TEST_F(FontDownload, ThousandsOfFontsStayWithinTheOpenFiles) {
    constexpr int kFonts = 3000;  // more than a process may open
    for (int i = 0; i < kFonts; ++i) {
        Add(("F" + std::to_string(i)).c_str(), TFontType::kType1);
    }
    const std::string text = Downloaded();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), kFonts);
    EXPECT_EQ(log.Messages(), "");
}

TEST(DownloadType, FollowsSourceAndLevel) {
    struct Case {
        int source;
        int atLevel2;
        int atLevel3;
    };

    for (const Case& tested : {Case{1, 1, 1},
                               {2, 1, 8},
                               {4, 3, 3},
                               {5, 4, 4},
                               {6, 4, 4},
                               {8, 1, 1},
                               {3, 0, 0},
                               {7, 0, 0}}) {
        ListedFont font("F", static_cast<TFontType>(tested.source), false);
        const auto type = [&font](int level) {
            return static_cast<int>(
                PS::PostScriptConnectionSpace::GetPSFontType(font, level, false));
        };
        RecordingLogger::Get().Clear();
        EXPECT_EQ(type(2), tested.atLevel2) << tested.source;
        EXPECT_EQ(type(3), tested.atLevel3) << tested.source;
        const std::string unsupported =
            "Unsupported font type " + std::to_string(tested.source) + " for building!";
        EXPECT_EQ(RecordingLogger::Get().Count(unsupported), tested.atLevel2 == 0 ? 2 : 0);
        EXPECT_EQ(type(1), tested.atLevel2) << tested.source;
        EXPECT_TRUE(RecordingLogger::Get().Has("defaulting to level 2!"));
        EXPECT_EQ(type(4), 0) << tested.source;
        EXPECT_TRUE(RecordingLogger::Get().Has("Bulletin: New PostScript Level is evolved!"));
    }
}

}  // namespace
}  // namespace VANTIX::TEST
