#include "chartsurface/tchart_array.h"

#include "foundation/vb_error.h"

namespace tallix {

namespace {
constexpr long kElementMissing = 340; // "Control array element does not exist"
constexpr long kAlreadyLoaded = 360;  // "Object already loaded"
} // namespace

TChart& TChartArray::operator()(int index)
{
    auto it = items_.find(index);
    if (it == items_.end())
        Raise(kElementMissing, QStringLiteral("Control array element '%1' doesn't exist").arg(index));
    return *it->second;
}

TChart& TChartArray::Load(int index)
{
    if (index < 0)
        Raise(kElementMissing, QStringLiteral("Control array element '%1' doesn't exist").arg(index));
    if (Exists(index))
        Raise(kAlreadyLoaded, QStringLiteral("Object already loaded"));
    auto chart = std::make_unique<TChart>(parent_, index);
    chart->hide();
    if (auto first = items_.find(0); first != items_.end())
        chart->setGeometry(first->second->geometry());
    TChart& ref = *chart;
    items_.emplace(index, std::move(chart));
    if (onLoad)
        onLoad(ref);
    return ref;
}

void TChartArray::Unload(int index)
{
    (*this)(index);
    items_.erase(index);
}

} // namespace tallix
