// SPDX-License-Identifier: MIT
#include "pdf/functions.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

constexpr std::size_t kMaxPieces = 4096;
constexpr std::size_t kLargestTable = std::size_t{64} << 20U;
constexpr std::size_t kLargestProgram = std::size_t{1} << 20U;

HOST::FunctionShape ShapeOf(const QPDFObjectHandle& object) {
    return {NumbersOf(Get(object, "/Domain"), std::size_t{2} * HOST::kMaxFunctionInputs),
            NumbersOf(Get(object, "/Range"), std::size_t{2} * HOST::kMaxFunctionOutputs)};
}

HOST::FunctionPtr MakeSampled(const QPDFObjectHandle& object, const HOST::FunctionShape& shape,
                              std::string& error) {
    HOST::SampledTable table;
    for (const float size : NumbersOf(Get(object, "/Size"), HOST::kMaxFunctionInputs)) {
        table.sizes.push_back(static_cast<std::int32_t>(size));
    }
    table.bitsPerSample = IntegerOf(Get(object, "/BitsPerSample")).value_or(0);
    table.order = IntegerOf(Get(object, "/Order")).value_or(1);
    table.encode = NumbersOf(Get(object, "/Encode"), std::size_t{2} * HOST::kMaxFunctionInputs);
    table.decode = NumbersOf(Get(object, "/Decode"), std::size_t{2} * HOST::kMaxFunctionOutputs);
    std::string data;
    AppendStreamData(object, data, kLargestTable);
    table.samples.assign(data.begin(), data.end());
    return HOST::MakeSampledFunction(shape, std::move(table), error);
}

HOST::FunctionPtr MakeExponential(const QPDFObjectHandle& object, HOST::FunctionShape shape,
                                  std::string& error) {
    std::vector<float> c0 = NumbersOf(Get(object, "/C0"), HOST::kMaxFunctionOutputs);
    std::vector<float> c1 = NumbersOf(Get(object, "/C1"), HOST::kMaxFunctionOutputs);
    const std::size_t outputs = std::max({c0.size(), c1.size(), std::size_t{1}});
    c0.resize(c0.empty() ? outputs : c0.size(), 0.0F);
    c1.resize(c1.empty() ? outputs : c1.size(), 1.0F);
    const double exponent = NumberOf(Get(object, "/N")).value_or(1.0);
    return HOST::MakeExponentialFunction(std::move(shape), std::move(c0), std::move(c1),
                                         ToFloat(exponent), error);
}

HOST::FunctionPtr MakeCalculator(const QPDFObjectHandle& object, HOST::FunctionShape shape,
                                 std::string& error) {
    std::string program;
    AppendStreamData(object, program, kLargestProgram);
    return HOST::MakeCalculatorFunction(std::move(shape), program, error);
}

}  // namespace

HOST::FunctionPtr FunctionReader::Read(QPDFObjectHandle object, std::string& error,
                                       int identityInputs) {
    if (object.isName() && NameOf(object) == "Identity") {
        return HOST::MakeIdentityFunction(identityInputs);
    }
    if (!object.isArray()) {
        return ReadNested(object, error, 0);
    }
    std::vector<HOST::FunctionPtr> members;
    const int count = object.getArrayNItems();
    if (count < 1 || count > HOST::kMaxFunctionOutputs) {
        error = "an array of functions has too many or no members";
        return nullptr;
    }
    for (int i = 0; i < count; ++i) {
        members.push_back(ReadNested(object.getArrayItem(i), error, 1));
        if (!members.back()) {
            return nullptr;
        }
    }
    return HOST::MakeFunctionArray(std::move(members), error);
}

HOST::FunctionPtr FunctionReader::ReadNested(const QPDFObjectHandle& object, std::string& error,
                                             int depth) {
    if (!object.isIndirect()) {
        return Make(object, error, depth);
    }
    const auto [known, isNew] = mKnown.try_emplace(object.getObjGen());
    if (isNew) {
        known->second = Make(object, error, depth);
    } else if (!known->second) {
        error = "the function is broken or holds itself";
    }
    return known->second;
}

HOST::FunctionPtr FunctionReader::Make(const QPDFObjectHandle& object, std::string& error,
                                       int depth) {
    if (depth > HOST::kMaxFunctionNesting) {
        error = "functions are nested too deep";
        return nullptr;
    }
    HOST::FunctionShape shape = ShapeOf(object);
    switch (IntegerOf(Get(object, "/FunctionType")).value_or(-1)) {
        case 0:
            return MakeSampled(object, shape, error);
        case 2:
            return MakeExponential(object, std::move(shape), error);
        case 3:
            return MakeStitching(object, std::move(shape), error, depth);
        case 4:
            return MakeCalculator(object, std::move(shape), error);
        default:
            error = "the function has no known type";
            return nullptr;
    }
}

HOST::FunctionPtr FunctionReader::MakeStitching(const QPDFObjectHandle& object,
                                                HOST::FunctionShape shape, std::string& error,
                                                int depth) {
    QPDFObjectHandle list = Get(object, "/Functions");
    const int count = list.isArray() ? list.getArrayNItems() : 0;
    if (count < 1 || static_cast<std::size_t>(count) > kMaxPieces) {
        error = "a stitching function has too many or no pieces";
        return nullptr;
    }
    std::vector<HOST::FunctionPtr> pieces;
    for (int i = 0; i < count; ++i) {
        pieces.push_back(ReadNested(list.getArrayItem(i), error, depth + 1));
        if (!pieces.back()) {
            return nullptr;
        }
    }
    return HOST::MakeStitchingFunction(std::move(shape), std::move(pieces),
                                       NumbersOf(Get(object, "/Bounds"), kMaxPieces),
                                       NumbersOf(Get(object, "/Encode"), 2 * kMaxPieces), error);
}

}  // namespace VANTIX::PDF
