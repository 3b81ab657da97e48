// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <utility>

#include "core/object/tobject.h"
#include "host/fonts/cffprogram.h"

namespace VANTIX::HOST {

/// The subroutines of a program for one of the interfaces that have them.
template <class Interface>
class CffSubroutines : public TObject<Interface> {
public:
    explicit CffSubroutines(std::shared_ptr<CffProgram> program) : mProgram(std::move(program)) {}

    std::int32_t GetLocalBias(std::uint16_t fontDict) const override {
        return mProgram->LocalBias(fontDict);
    }

    std::int32_t GetGlobalBias() const override { return mProgram->GlobalBias(); }

    std::int32_t CopyLocalSubroutine(std::uint16_t fontDict, std::int32_t number,
                                     std::uint8_t* buffer) const override {
        return mProgram->CopyLocal(fontDict, number, buffer);
    }

    std::int32_t CopyGlobalSubroutine(std::int32_t number, std::uint8_t* buffer) const override {
        return mProgram->CopyGlobal(number, buffer);
    }

protected:
    [[nodiscard]] const CffProgram& Program() const { return *mProgram; }

private:
    std::shared_ptr<CffProgram> mProgram;
};

}  // namespace VANTIX::HOST
