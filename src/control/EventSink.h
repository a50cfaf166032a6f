// Where the view's events go: one typed call per row of EventTable.def. A
// view without a sink fires into nothing.
#pragma once

#include "MemberSpec.h"
#include "TableMacros.h"

#include <cstdint>
#include <span>

namespace bvx {

namespace members::cpp {
using I2 = int16_t;
using I4 = int32_t;
using R8 = double;
} // namespace members::cpp

#pragma push_macro("BVX_ARG")
#undef BVX_ARG
#define BVX_PARAM_BVX_ARG(T, N) ::bvx::members::cpp::T N
#define BVX_VALUE_BVX_ARG(T, N) double(N)

class EventSink {
public:
    virtual ~EventSink() = default;
#define BVX_EVENT(Id, Name, Doc, ...) virtual void Name(BVX_FOR_EACH_ARG(BVX_PARAM_, __VA_ARGS__)) = 0;
#include "EventTable.def"
#undef BVX_EVENT
};

// A sink that hands every event on in one form: its row of the event table
// and its arguments, all of which are numbers.
class EventRecorder : public EventSink {
public:
    virtual void OnEvent(const members::EventRow& event, std::span<const double> args) = 0;

#define BVX_EVENT(Id, Name, Doc, ...)                                                                              \
    void Name(BVX_FOR_EACH_ARG(BVX_PARAM_, __VA_ARGS__)) override                                                  \
    {                                                                                                              \
        const double values[] = {BVX_FOR_EACH_ARG(BVX_VALUE_, __VA_ARGS__)};                                       \
        OnEvent(Row(Id), values);                                                                                  \
    }
#include "EventTable.def"
#undef BVX_EVENT

private:
    static const members::EventRow& Row(int32_t dispid)
    {
        for (const auto& row : members::kEventRows)
            if (row.dispid == dispid) return row;
        return members::kEventRows[0];
    }
};

#undef BVX_PARAM_BVX_ARG
#undef BVX_VALUE_BVX_ARG
#pragma pop_macro("BVX_ARG")

} // namespace bvx
