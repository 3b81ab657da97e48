// SPDX-License-Identifier: MIT
#include "host/host.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>

#include "core/io/ioutputfilterstack.h"
#include "core/registry/iregistrar.h"
#include "core/registry/irunenvironment.h"
#include "host/object/classfactory.h"
#include "host/support/dictionary.h"
#include "support/temporaryfolder.h"

namespace VANTIX::HOST {
namespace {

constexpr GUID kUnknown = "11111111-2222-3333-4444-555555555555"_guid;

TEST(ClassFactory, AnUnknownClassGivesAFailureAndNull) {
    const auto factory = MakeObject<ClassFactory>();
    IObject* object = factory.Get();
    EXPECT_NE(factory->CreateInstance(kUnknown, &object), STATUS::kOk);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(factory->CreateInstance(kUnknown, nullptr), STATUS::kInvalidArgument);
}

TEST(ClassFactory, AFailingMakerCrossesNoBorder) {
    const auto factory = MakeObject<ClassFactory>();
    factory->Enter(kUnknown, []() -> IObject* { throw std::bad_alloc(); });
    IObject* object = factory.Get();
    EXPECT_EQ(factory->CreateInstance(kUnknown, &object), STATUS::kOutOfMemory);
    EXPECT_EQ(object, nullptr);
}

TEST(ClassFactory, MakesWhatIsRegisteredAndKeepsTheFirstCreator) {
    const auto factory = MakeObject<ClassFactory>();
    const auto registrar =
        CreateObject<COREREGISTRY::IRegistrar>(factory.Get(), COREREGISTRY::CLSID_REGISTRAR);
    ASSERT_TRUE(registrar);
    const auto creator = []() -> IObject* { return new Dictionary; };
    EXPECT_EQ(registrar->RegisterClass(kUnknown, creator), STATUS::kOk);
    EXPECT_EQ(registrar->RegisterClass(kUnknown, creator), STATUS::kInvalidArgument);
    EXPECT_EQ(registrar->RegisterClass(IO::IID_IDICTIONARY, nullptr), STATUS::kInvalidArgument);
    EXPECT_TRUE(CreateObject<IObject>(factory.Get(), kUnknown));
}

TEST(Host, KnowsEveryClassThatThePluginAsksFor) {
    Host host;
    for (const GUID& id :
         {COREREGISTRY::CLSID_REGISTRAR, GRAPHICS::IID_IBASECONNECTIONSPACE,
          IO::IID_IOUTPUTFILTERSTACK, IO::CLSID_PACKETDATAPROVIDERFACTORY, IO::IID_IDATAPROVIDER,
          IO::IID_IDICTIONARY, IO::CLSID_KEYEDPROPERTIES, GRAPHICS::CLSID_MUTABLEGRAPHICSSTATESTACK,
          COLOR::IID_ICONNECTIONCOLORSPACEFACTORY, COLOR::CLSID_COLORFUNCTIONFACTORY}) {
        const auto object = CreateObject<IObject>(&host.Factory(), id);
        EXPECT_TRUE(object) << std::hex << id.Data1;
    }
}

TEST(Host, HasOneColourSpaceFactory) {
    Host host;
    const auto spaces =
        CreateObject<IObject>(&host.Factory(), COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    EXPECT_EQ(spaces.Get(), &host.ColorSpaces());
}

TEST(Host, OffersARunEnvironmentOnlyWhenOneIsSet) {
    Host host;
    EXPECT_FALSE(CreateObject<IObject>(&host.Factory(), COREREGISTRY::CLSID_RUNENVIRONMENT));
    host.SetRunEnvironment(5, 1234567890);
    const auto environment = CreateObject<COREREGISTRY::IRunEnvironment>(
        &host.Factory(), COREREGISTRY::CLSID_RUNENVIRONMENT);
    ASSERT_TRUE(environment);
    std::uint64_t seed = 0;
    std::int64_t time = 0;
    EXPECT_TRUE(environment->GetSeed(seed) && environment->GetTime(time));
    EXPECT_EQ(seed, 5U);
    EXPECT_EQ(time, 1234567890);
}

TEST(Host, SaysWhyAPluginCannotBeLoaded) {
    Host host;
    const TEST::TemporaryFolder folder;
    std::string error;
    EXPECT_FALSE(host.LoadPlugin(folder.File("none.plugin"), error));
    EXPECT_NE(error.find("does not exist"), std::string::npos) << error;

    TEST::WriteFile(folder.File("text.plugin"), "no library");
    EXPECT_FALSE(host.LoadPlugin(folder.File("text.plugin"), error));
    EXPECT_NE(error.find("cannot be loaded"), std::string::npos) << error;

    Dl_info library{};
    ASSERT_NE(dladdr(reinterpret_cast<const void*>(&std::getenv), &library), 0);
    EXPECT_FALSE(host.LoadPlugin(library.dli_fname, error));
    EXPECT_NE(error.find("no function Init"), std::string::npos) << error;
    EXPECT_FALSE(host.CreateExporter());
}

}  // namespace
}  // namespace VANTIX::HOST
