// SPDX-License-Identifier: MIT
#pragma once

#include "core/object/iobject.h"

namespace VANTIX::GRAPHICS {

class IConnectionSpace;

/// An open text object: its matrix and position. Valid until `EndTextObject` of its connection
/// space.
class ITextObject : public IObject {
public:
    virtual bool Reserved1() = 0;
    virtual bool Reserved2() = 0;
    virtual void ConcatTextMatrix(const float matrix[6]) = 0;
    virtual void MoveText(float tx, float ty) = 0;
    virtual void NextLine() = 0;
    virtual void AdvanceGlyph(float w0, float w1) = 0;
    virtual void AdvanceText(float t) = 0;
    virtual void SetTextMatrix(const float matrix[6]) = 0;
    virtual IConnectionSpace* GetConnectionSpace() = 0;
};

}  // namespace VANTIX::GRAPHICS
