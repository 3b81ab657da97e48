// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/graphics/baseconnectionspace.h"
#include "host/host.h"
#include "host/io/fileprovider.h"
#include "host/support/logger.h"
#include "support/temporaryfolder.h"

namespace VANTIX::HOST {

/// Only distillers know the operator of the prolog.
inline constexpr std::string_view kGuard =
    "%!PS-Adobe-3.0\n"
    "/setdistillerparams where {pop} {userdict /setdistillerparams {pop} put} ifelse\n";

/// Jobs of the built plug-in in the host. What it reports must be taken from `messages`: nothing
/// else is expected.
class Job : public testing::Test {
protected:
    Job() {
        SetLogSink([this](const LogEntry& entry) { messages += entry.text + '\n'; });
        std::string error;
        EXPECT_TRUE(mHost.LoadPlugin(NORVANE_PLUGIN, error)) << error;
        exporter = mHost.CreateExporter();
        policy = mHost.CreatePolicy();
    }

    ~Job() override {
        SetLogSink({});
        EXPECT_EQ(messages, "");
    }

    void SetUp() override { ASSERT_TRUE(exporter); }

    [[nodiscard]] std::string Path(const char* name) const { return mFolder.File(name); }

    static TInterfacePtr<FileProvider> Create(const std::string& path) {
        return MakeObject<FileProvider>(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600));
    }

    /// Runs a job and answers its text; `draw` gets the space to draw into.
    std::string Run(const std::function<void(BaseConnectionSpace&, IO::IDataProvider&)>& draw,
                    std::string_view preamble = {}) {
        const auto output = Create(Path("job.ps"));
        output->Write(preamble.data(), preamble.size());
        auto* base = BaseConnectionSpace::From(exporter->Begin(*output, policy.Get()));
        if (base == nullptr) {
            return "no space";
        }
        draw(*base, *output);
        EXPECT_EQ(exporter->End(), STATUS::kOk);
        EXPECT_EQ(output->FirstError(), 0);
        return TEST::ReadFile(Path("job.ps"));
    }

    /// Makes `values` (in host form) the current fill or stroke colour.
    void SetColor(BaseConnectionSpace& base, bool fill, FourCC family,
                  const std::vector<float>& values) {
        CurrentColor& color = fill ? base.State().Current().fill : base.State().Current().stroke;
        color.space = mHost.ColorSpaces().DeviceSpace(family);
        color.id = family;
        color.count = static_cast<std::int32_t>(values.size());
        std::copy(values.begin(), values.end(), color.values.begin());
    }

    std::string messages;  // a line each
    TInterfacePtr<GRAPHICS::IGraphicExporter> exporter;
    TInterfacePtr<IO::IDictionary> policy;

private:
    TEST::TemporaryFolder mFolder;
    Host mHost;
};

inline void Rectangle(BaseConnectionSpace& base, float x, float y, float side) {
    const std::array<float, 6> rest{x + side, y, x + side, y + side, x, y + side};
    base.MoveTo(x, y);
    base.LineTo(rest.data(), 3);
    base.ClosePath();
}

}  // namespace VANTIX::HOST
