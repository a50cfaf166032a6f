// Where the view's events go: one typed call per row of EventTable.def. A
// view without a sink fires into nothing.
#pragma once

#include <cstdint>

namespace bvx {

namespace members::cpp {
using I2 = int16_t;
using I4 = int32_t;
using R8 = double;
} // namespace members::cpp

class EventSink {
public:
    virtual ~EventSink() = default;

#define BVX_ARG(T, N) ::bvx::members::cpp::T N
#define BVX_EVENT(Id, Name, Doc, ...) virtual void Name(__VA_ARGS__) = 0;
#include "EventTable.def"
#undef BVX_EVENT
#undef BVX_ARG
};

} // namespace bvx
