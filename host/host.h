// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "core/graphics/iconnectionspace.h"
#include "core/graphics/igraphicexporter.h"
#include "core/io/idictionary.h"
#include "core/object/iclassfactory.h"
#include "host/color/colorspacefactory.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// The reference host: the class factory with all of its classes, and a loaded plug-in. It must
/// outlive every job and every object made by it.
class NORVANE_HOST_API Host {
public:
    Host();
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    Host(Host&&) = delete;
    Host& operator=(Host&&) = delete;

    /// Makes runs repeatable: the seed of all chance that reaches the output, and the time to be
    /// taken for now (seconds since 1970). Call before the first job.
    void SetRunEnvironment(std::uint64_t seed, std::int64_t time);

    /// Loads the plug-in at `path` and calls its `Init`; false with the reason in `error`.
    bool LoadPlugin(const std::string& path, std::string& error);

    /// The plug-in beside this library or in its standard place; empty when there is none.
    static std::string FindPlugin();

    [[nodiscard]] IClassFactory& Factory();
    /// The one colour-space factory of this host.
    [[nodiscard]] ColorSpaceFactory& ColorSpaces();
    /// An empty policy dictionary.
    TInterfacePtr<IO::IDictionary> CreatePolicy();
    /// A PostScript exporter of the loaded plug-in, or null.
    TInterfacePtr<GRAPHICS::IGraphicExporter> CreateExporter();

private:
    struct Parts;
    std::unique_ptr<Parts> mParts;
};

}  // namespace VANTIX::HOST
