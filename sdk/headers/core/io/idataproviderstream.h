// SPDX-License-Identifier: MIT
#pragma once

#include "core/io/idataprovider.h"
#include "core/libsupport/corestring/corestring.h"

namespace VANTIX::IO {

/// A formatted stream over a data provider: the host's half, which sets the provider and reads.
class IDataProviderStream : public IObject {
public:
    /// Stores the provider and takes a reference; releases an earlier one.
    virtual Status SetDataProvider(IDataProvider* provider) = 0;
    virtual void GetDataProvider(TInterfacePtr<IDataProvider>& out) = 0;
    virtual IDataProviderStream& operator>>(GUID& value) = 0;
    virtual IDataProviderStream& Reserved1() = 0;
    virtual IDataProviderStream& operator>>(CoreString& value) = 0;
    virtual IDataProviderStream& operator>>(double& value) = 0;
    virtual IDataProviderStream& operator>>(float& value) = 0;
    virtual IDataProviderStream& operator>>(bool& value) = 0;
    virtual IDataProviderStream& operator>>(std::uint64_t& value) = 0;
    virtual IDataProviderStream& operator>>(std::int64_t& value) = 0;
    virtual IDataProviderStream& operator>>(std::uint32_t& value) = 0;
    virtual IDataProviderStream& operator>>(std::int32_t& value) = 0;
    virtual IDataProviderStream& operator>>(std::uint16_t& value) = 0;
    virtual IDataProviderStream& operator>>(std::int16_t& value) = 0;
    virtual IDataProviderStream& operator>>(std::uint8_t& value) = 0;
    virtual IDataProviderStream& operator>>(std::int8_t& value) = 0;
};

}  // namespace VANTIX::IO
