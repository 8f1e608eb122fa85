#include "web/WebInspectorPolicy.h"

namespace brevanta {

WebInspectorPolicy::Decision WebInspectorPolicy::decide(const Stored& stored, double now)
{
    if (stored.kind == Stored::Kind::nothing)
        return {};
    const double left = stored.date - now;
    if (stored.kind == Stored::Kind::date && left > 0 && left <= longest)
        return { .onUntil = stored.date, .deleteKey = false };
    return { .onUntil = std::nullopt, .deleteKey = true };
}

}
