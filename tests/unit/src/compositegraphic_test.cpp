// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "core/libsupport/abstractio/libutils.h"
#include "postscriptcompositegraphic.h"
#include "support/fakedictionary.h"
#include "support/fakefactory.h"
#include "support/memoryprovider.h"
#include "support/recordinglogger.h"

namespace VANTIX::COREREGISTRY {
namespace {

using TEST::FakeDictionary;
using TEST::RecordingLogger;
using GraphicPtr = TInterfacePtr<ICompositeGraphic>;

class CompositeGraphic : public ::testing::Test {
protected:
    CompositeGraphic() {
        RecordingLogger::Get().Clear();
        factory.Offer<FakeDictionary>(IO::IID_IDICTIONARY);
    }

    GraphicPtr Create() {
        return GraphicPtr::Adopt(
            static_cast<ICompositeGraphic*>(CreateICompositeGraphic(&factory)));
    }

    static std::string Log() { return RecordingLogger::Get().Messages(); }

    TEST::FakeFactory factory;
};

TEST_F(CompositeGraphic, TellsItsFilterAndDeclinesToImport) {
    const auto graphic = Create();
    ASSERT_TRUE(graphic);
    const auto* dictionary = FindInterface<FakeDictionary>(graphic.Get(), IO::IID_IDICTIONARY);
    ASSERT_NE(dictionary, nullptr);
    EXPECT_EQ(std::get<FakeDictionary::Binary>(dictionary->entries.at(1)),
              (FakeDictionary::Binary{1, 0, 0, 0, 'P', 'S', ' ', ' '}));
    EXPECT_EQ(std::get<FakeDictionary::Binary>(dictionary->entries.at(2)),
              (FakeDictionary::Binary{1, 'P', 'S', 0}));
    EXPECT_EQ(std::get<std::u16string>(dictionary->entries.at(3)),
              std::u16string(u"PS Connection Space") + u'\0');
    EXPECT_EQ(FindInterface<IClassFactory>(graphic.Get(), IID_CLASSFACTORY), &factory);

    TEST::MemoryProvider stream;
    EXPECT_EQ(graphic->Init(factory, stream, nullptr), STATUS::kNotSupported);
    EXPECT_EQ(Log(), "Postscript import not supported\n");
}

TEST_F(CompositeGraphic, IsNotMadeWithoutFactoryOrDictionary) {
    EXPECT_EQ(CreateICompositeGraphic(nullptr), nullptr);
    EXPECT_EQ(Log(), "cannot instantiate this object without a valid core registry.\n");
    RecordingLogger::Get().Clear();
    factory.creators.clear();
    EXPECT_FALSE(Create());
    EXPECT_EQ(Log(),
              "Could not create a dictionary or find one to give back filter information.\n"
              "CreateDictionaryWithFilterInfoKeys failed. Error = 12\n");
    EXPECT_EQ(factory.AddRef(), 2U);
    TInterfacePtr<IO::IDictionary> dictionary;
    EXPECT_EQ(CreatePersistentDictionary(nullptr, dictionary), STATUS::kNoDictionary);
    EXPECT_TRUE(
        RecordingLogger::Get().Has("Attempted to use a library util without a factory pointer"));
}

TEST_F(CompositeGraphic, TilesArePassedAlongTheChain) {
    class Tile : public TObject<ITile> {};

    Tile tile;
    const auto graphic = Create();
    EXPECT_EQ(graphic->AdaptTile(nullptr, nullptr), STATUS::kNoTile);
    EXPECT_EQ(Log(), "Need either a inputTile or outputTile23\n");
    EXPECT_EQ(graphic->AdaptTile(&tile, nullptr), STATUS::kOk);
    EXPECT_EQ(graphic->ForwardTile(nullptr, nullptr), STATUS::kOk);
    EXPECT_EQ(graphic->Reserved1(), STATUS::kOk);

    ITileAdaptor* found = nullptr;
    EXPECT_EQ(graphic->FindTileAdaptor(CLSID_COMPOSITEGRAPHICCLASS, &found), STATUS::kOk);
    EXPECT_EQ(found, graphic.Get());
    EXPECT_EQ(graphic->FindTileAdaptor(CLSID_POSTSCRIPTCOMPOSITEGRAPHIC, &found),
              STATUS::kNoInterface);
    EXPECT_EQ(found, nullptr);

    const auto next = Create();
    graphic->SetNextTileAdaptor(next.Get());
    EXPECT_EQ(graphic->GetNextTileAdaptor(), next.Get());
    EXPECT_EQ(graphic->ForwardTile(nullptr, nullptr), STATUS::kNoTile);
    graphic->SetNextTileAdaptor(nullptr);
    EXPECT_EQ(next->AddRef(), 2U);
    next->Release();
}

}  // namespace
}  // namespace VANTIX::COREREGISTRY
