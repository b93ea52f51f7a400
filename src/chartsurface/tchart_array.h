#pragma once
// A form's array of chart surfaces, as a control array: element 0 upward, each made when it
// is loaded, each carrying its index into the events it raises.

#include "chartsurface/tchart.h"

#include <functional>
#include <map>
#include <memory>

namespace tallix {

class TChartArray {
public:
    explicit TChartArray(QWidget* parent) : parent_(parent) {}

    // The loaded element; asking for one that is not loaded raises error 340.
    TChart& operator()(int index);
    // Makes the element (hidden, at the size of element 0 if there is one); loading a loaded
    // index raises error 360, as loading a loaded control does.
    TChart& Load(int index);
    void Unload(int index);
    bool Exists(int index) const { return items_.count(index) != 0; }
    int Count() const { return int(items_.size()); }
    int UBound() const { return items_.empty() ? -1 : items_.rbegin()->first; }

    // Called for each element as it is made, e.g. to connect its events.
    std::function<void(TChart&)> onLoad;

private:
    QWidget* parent_;
    std::map<int, std::unique_ptr<TChart>> items_;
};

} // namespace tallix
