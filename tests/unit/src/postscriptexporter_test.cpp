// SPDX-License-Identifier: MIT
#include "postscriptexporter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "core/graphics/pluginhelper/delegateconnectionspace.h"
#include "postscriptdocument.h"
#include "support/fakedictionary.h"
#include "support/fakefactory.h"
#include "support/memoryprovider.h"
#include "support/recordinglogger.h"

namespace VANTIX::GRAPHICS {
namespace {

using TEST::FakeDictionary;
using TEST::MemoryProvider;
using TEST::RecordingLogger;

/// A connection space whose set-up does what a test says, and that tells when it dies.
class FakeSpace : public DelegateConnectionSpace {
public:
    using Setup = std::function<bool(FakeSpace&)>;

    FakeSpace(Setup setup, std::string name, std::string& deaths)
        : mSetup(std::move(setup)), mName(std::move(name)), mDeaths(deaths) {}

    ~FakeSpace() override { mDeaths += mName; }

    bool Init(IO::IDataProvider* /*stream*/, IClassFactory* /*factory*/,
              const IO::IDictionary* /*policy*/) override {
        return mSetup(*this);
    }

private:
    Setup mSetup;
    std::string mName;
    std::string& mDeaths;
};

/// As a base connection space is blessed into the space.
bool BecomeReady(FakeSpace& space) {
    return space.Aggregate(MakeObject<DelegateConnectionSpace>().Get(), IID_IBASECONNECTIONSPACE) ==
           STATUS::kOk;
}

class Exporter : public ::testing::Test {
protected:
    Exporter() {
        RecordingLogger::Get().Clear();
        factory.Offer<FakeDictionary>(IO::IID_IDICTIONARY);
        factory.creators[CLSID_POSTSCRIPTCONNECTIONSPACE] = [this] {
            return new FakeSpace(setup, std::to_string(++spaces), deaths);
        };
        Create();
    }

    void Create() {
        exporter = TInterfacePtr<IGraphicExporter>::Adopt(
            static_cast<IGraphicExporter*>(CreateIGraphicExporter(&factory)));
    }

    static std::string Log() { return RecordingLogger::Get().Messages(); }

    FakeSpace::Setup setup = BecomeReady;
    int spaces = 0;
    std::string deaths;
    TEST::FakeFactory factory;
    MemoryProvider first;
    MemoryProvider second;
    TInterfacePtr<IGraphicExporter> exporter;
};

TEST_F(Exporter, AnEmptyJobIsFiveHundredAndFiftySixBytes) {
    FakeDictionary options;
    ASSERT_NE(exporter->Begin(first, &options), nullptr);
    EXPECT_EQ(first.contents.size(), 550U);
    EXPECT_EQ(deaths, "");
    EXPECT_EQ(exporter->End(), STATUS::kOk);
    EXPECT_EQ(first.contents.size(), 556U);
    EXPECT_EQ(first.flushes, 1);
    EXPECT_EQ(deaths, "1");
    EXPECT_EQ(Log(), "");
    EXPECT_EQ(first.AddRef(), 2U) << "nobody holds the stream after the job";
}

TEST_F(Exporter, EndClosesTheNewestJobAndNothingWithoutOne) {
    EXPECT_EQ(exporter->End(), STATUS::kOk);
    exporter->Begin(first, nullptr);
    exporter->Begin(second, nullptr);
    exporter->End();
    EXPECT_EQ(deaths, "2");
    EXPECT_TRUE(second.contents.ends_with("%%EOF\n"));
    EXPECT_FALSE(first.contents.ends_with("%%EOF\n"));
    exporter->End();
    EXPECT_EQ(deaths, "21");
    EXPECT_TRUE(first.contents.ends_with("%%EOF\n"));
    EXPECT_EQ(exporter->End(), STATUS::kOk);
    EXPECT_EQ(Log(), "");
}

TEST_F(Exporter, AJobThatCannotBeginLeavesTheOthersAlone) {
    exporter->Begin(first, nullptr);
    const FakeSpace::Setup failures[] = {
        [](FakeSpace& space) { return !BecomeReady(space); },
        [](FakeSpace&) { return true; },  // ready, but without a space to draw into
    };
    for (const FakeSpace::Setup& failure : failures) {
        RecordingLogger::Get().Clear();
        setup = failure;
        EXPECT_EQ(exporter->Begin(second, nullptr), nullptr);
        EXPECT_EQ(Log(), "CreatePostScriptConnectionSpace returned NULL.\n");
    }
    EXPECT_EQ(deaths, "23");
    EXPECT_EQ(second.contents.size(), 2 * 550U);
    factory.creators.erase(CLSID_POSTSCRIPTCONNECTIONSPACE);
    EXPECT_EQ(exporter->Begin(second, nullptr), nullptr);
    exporter->End();
    EXPECT_TRUE(first.contents.ends_with("%%EOF\n"));
}

TEST_F(Exporter, OpenJobsAreReleasedInOrderWithoutTrailers) {
    exporter->Begin(first, nullptr);
    exporter->Begin(second, nullptr);
    exporter = nullptr;
    EXPECT_EQ(deaths, "12");
    EXPECT_EQ(first.contents.size(), 550U);
    EXPECT_EQ(factory.AddRef(), 2U);
}

TEST_F(Exporter, WithoutAClassFactoryNothingBeginsEvenWhileAnotherThreadHoldsTheLock) {
    EXPECT_EQ(CreateIGraphicExporter(nullptr), nullptr);
    EXPECT_EQ(Log(), "cannot instantiate this object without a valid core registry.\n");
    RecordingLogger::Get().Clear();
    exporter->Disaggregate(IID_CLASSFACTORY);
    EXPECT_EQ(exporter->Begin(first, nullptr), nullptr);
    EXPECT_EQ(Log(), "I require a valid class factory.\n");
    EXPECT_EQ(first.contents, "");
    exporter->SetClassFactory(&factory);
    EXPECT_NE(exporter->Begin(first, nullptr), nullptr);
}

TEST_F(Exporter, ALockHeldForMoreThanASecondIsGivenUp) {
    std::atomic<bool> entered{false};
    std::atomic<bool> leave{false};
    setup = [&](FakeSpace& space) {
        entered = true;
        while (!leave) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return BecomeReady(space);
    };
    std::thread slow([this] { exporter->Begin(first, nullptr); });
    while (!entered) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(exporter->Begin(second, nullptr), nullptr);
    EXPECT_EQ(second.contents, "");
    EXPECT_EQ(exporter->End(), STATUS::kOk);
    EXPECT_EQ(Log(), "Could not grab the mutex\nCould not grab the mutex\n");
    leave = true;
    slow.join();
    exporter->End();
    EXPECT_TRUE(first.contents.ends_with("%%EOF\n"));
}

TEST_F(Exporter, ALostDocumentIsLoggedAndTheJobReleased) {
    FakeSpace* space = nullptr;
    setup = [&space](FakeSpace& made) {
        space = &made;
        return BecomeReady(made);
    };
    exporter->Begin(first, nullptr);
    space->Disaggregate(PS::IID_IPOSTSCRIPTDOCUMENT);
    EXPECT_EQ(exporter->End(), STATUS::kOk);
    EXPECT_EQ(Log(), "No document was aggregated to the target connection space. Bad!\n");
    EXPECT_EQ(deaths, "1");
    RecordingLogger::Get().Clear();

    exporter->Begin(first, nullptr);
    FindInterface<PS::IPostScriptDocument>(space, PS::IID_IPOSTSCRIPTDOCUMENT)
        ->Init(nullptr, nullptr, nullptr, false);
    EXPECT_EQ(exporter->End(), STATUS::kOk);
    EXPECT_EQ(Log(), "No mDataProvider\nFinishWritingDocument failed.\n");
    EXPECT_EQ(RecordingLogger::Get().Entries().back().file, "src/postscriptexporter");
}

TEST_F(Exporter, TellsItsFileType) {
    const auto* dictionary = FindInterface<FakeDictionary>(exporter.Get(), IO::IID_IDICTIONARY);
    ASSERT_NE(dictionary, nullptr);
    const auto text = [dictionary](std::int32_t key) {
        const auto& bytes = std::get<FakeDictionary::Binary>(dictionary->entries.at(key));
        return std::string(bytes.begin(), bytes.end());
    };
    EXPECT_EQ(text(1), std::string("\x02\0\0\0PS    SP", 12));
    EXPECT_EQ(text(2), std::string("\x01PS\0", 4));
    EXPECT_EQ(std::get<std::u16string>(dictionary->entries.at(3)),
              std::u16string(u"PS Format") + u'\0');

    factory.creators.erase(IO::IID_IDICTIONARY);
    Create();
    ASSERT_TRUE(exporter);
    EXPECT_EQ(Log(), "Could no create dictionary.\n");
    EXPECT_NE(exporter->Begin(first, nullptr), nullptr);
}

}  // namespace
}  // namespace VANTIX::GRAPHICS
