// SPDX-License-Identifier: MIT
#include "plugin.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "baseconnectionspacedelegate/iconnectionspacedelegate.h"
#include "core/graphics/iconnectionspace.h"
#include "core/registry/iregistrar.h"
#include "postscriptcompositegraphic.h"
#include "postscriptexporter.h"
#include "psfontbuilderfactory.h"
#include "support/fakedictionary.h"
#include "support/fakefactory.h"
#include "support/recordinglogger.h"

namespace VANTIX::COREREGISTRY {
namespace {

using TEST::RecordingLogger;

/// A registrar whose creators the factory uses, as in the host.
class FakeRegistrar : public TObject<IRegistrar> {
public:
    explicit FakeRegistrar(TEST::FakeFactory& factory) : mFactory(factory) {}

    std::vector<GUID> registered;

    Status RegisterClass(const GUID& classId, Creator creator) override {
        registered.push_back(classId);
        mFactory.creators[classId] = creator;
        return STATUS::kOk;
    }

private:
    TEST::FakeFactory& mFactory;
};

class FakeList : public TObject<IGuidList> {
public:
    std::vector<GUID> ids;

    Status Add(const GUID& id) override {
        ids.push_back(id);
        return STATUS::kOk;
    }
};

class FakeFilterRegistry : public TObject<IFilterRegistry> {
public:
    FakeList list;

    IGuidList* GetList() override { return &list; }
};

const std::vector<GUID> kPluginClasses{RENDERING::CLSID_CONNECTIONSPACEDELEGATEFACTORY,
                                       PS::CLSID_PSFONTBUILDERFACTORY,
                                       GRAPHICS::CLSID_POSTSCRIPTCONNECTIONSPACE};

class Plugin : public ::testing::Test {
protected:
    Plugin() : registrar(factory) {
        RecordingLogger::Get().Clear();
        factory.OfferObject(CLSID_REGISTRAR, &registrar);
        factory.Offer<TEST::FakeDictionary>(IO::IID_IDICTIONARY);
    }

    template <class T>
    TInterfacePtr<T> GetClass(const GUID& classId) {
        IObject* object = nullptr;
        EXPECT_EQ(GetClassObject(classId, nullptr, &object, &factory), STATUS::kOk);
        return TInterfacePtr<T>::Adopt(static_cast<T*>(object));
    }

    TEST::FakeFactory factory;
    FakeRegistrar registrar;
};

TEST_F(Plugin, RegistersOnlyWhatTheHostCannotMake) {
    EXPECT_EQ(Init(nullptr, &factory), STATUS::kOk);
    EXPECT_EQ(registrar.registered, kPluginClasses);
    EXPECT_EQ(Init(nullptr, &factory), STATUS::kOk);
    EXPECT_EQ(registrar.registered.size(), 3U);
    for (const GUID& classId : kPluginClasses) {
        EXPECT_TRUE(CreateObject<IObject>(&factory, classId));
    }
    factory.creators.erase(PS::CLSID_PSFONTBUILDERFACTORY);
    EXPECT_EQ(Init(nullptr, &factory), STATUS::kOk);
    EXPECT_EQ(registrar.registered.back(), PS::CLSID_PSFONTBUILDERFACTORY);
    EXPECT_EQ(DeInit(), STATUS::kOk);
    EXPECT_EQ(RecordingLogger::Get().Messages(), "");
    EXPECT_EQ(registrar.AddRef(), 2U);
}

TEST_F(Plugin, NeedsAFactoryAndARegistrar) {
    EXPECT_EQ(Init(nullptr, nullptr), STATUS::kInvalidArgument);
    EXPECT_EQ(RecordingLogger::Get().Messages(), "");
    factory.creators.clear();
    EXPECT_EQ(Init(nullptr, &factory), STATUS::kInvalidArgument);
    EXPECT_EQ(RecordingLogger::Get().Messages(), "Could not find a registrar.\n");
}

TEST_F(Plugin, ItsClassTableNamesCategoriesAndClasses) {
    const auto table = GetClass<IPluginClassFactories>(CLSID_PLUGINCLASSFACTORIES);
    EXPECT_EQ(*table->GetClassID(), CLSID_PLUGINCLASSFACTORIES);
    FakeFilterRegistry categories;
    EXPECT_EQ(table->GetFilterCategories(&categories), STATUS::kOk);
    EXPECT_EQ(categories.list.ids,
              (std::vector<GUID>{CATID_COMPOSITEGRAPHICS, CATID_GRAPHICEXPORTERS}));
    FakeFilterRegistry classes;
    EXPECT_EQ(table->GetFilterClasses(CATID_GRAPHICEXPORTERS, &classes), STATUS::kOk);
    EXPECT_EQ(table->GetFilterClasses(CATID_COMPOSITEGRAPHICS, &classes), STATUS::kOk);
    EXPECT_EQ(table->GetFilterClasses(CLSID_REGISTRAR, &classes), STATUS::kInvalidArgument);
    EXPECT_EQ(classes.list.ids, (std::vector<GUID>{GRAPHICS::CLSID_POSTSCRIPTEXPORTER,
                                                   CLSID_POSTSCRIPTCOMPOSITEGRAPHIC}));
    EXPECT_EQ(table->GetFilterCategories(nullptr), STATUS::kOk);
}

TEST_F(Plugin, MakesItsTopLevelObjects) {
    EXPECT_TRUE(GetClass<GRAPHICS::IGraphicExporter>(GRAPHICS::CLSID_POSTSCRIPTEXPORTER));
    const auto graphic = GetClass<ICompositeGraphic>(CLSID_POSTSCRIPTCOMPOSITEGRAPHIC);
    EXPECT_EQ(*graphic->GetClassID(), CLSID_COMPOSITEGRAPHICCLASS);
    IObject* object = &factory;
    EXPECT_EQ(GetClassObject(GRAPHICS::CLSID_POSTSCRIPTEXPORTER, nullptr, &object, nullptr),
              STATUS::kOutOfMemory);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(GetClassObject(CLSID_PLUGINCLASSFACTORIES, nullptr, nullptr, &factory),
              STATUS::kInvalidArgument);
}

TEST_F(Plugin, AnUnknownClassIsToldOnStandardOutput) {
    IObject* object = &factory;
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(GetClassObject(CLSID_REGISTRAR, nullptr, &object, &factory), STATUS::kOutOfMemory);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              "CreateClassFactory: No interface for "
              "0xDA9DB78F-0x6185-0x472C-182-205-214-137-126-238-204-213\n");
    EXPECT_EQ(object, nullptr);
}

}  // namespace
}  // namespace VANTIX::COREREGISTRY
