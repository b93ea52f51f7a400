#pragma once
// Arrays as the system describes them: zero-based with inclusive bounds ("0..n" holds
// n+1 elements), resized with or without keeping their contents, and an index outside
// the bounds raises "Subscript out of range" into the error report, never a crash.

#include "vb_error.h"

#include <QString>

#include <vector>

namespace tallix {

template <class T>
class VbArray {
public:
    VbArray() = default;
    explicit VbArray(int upper, const T& fill = T()) { redim(upper, fill); }

    // Upper bound; -1 when the array holds nothing.
    int ubound() const { return int(items_.size()) - 1; }
    int size() const { return int(items_.size()); }
    bool empty() const { return items_.empty(); }

    void redim(int upper, const T& fill = T()) { items_.assign(std::size_t(std::max(upper + 1, 0)), fill); }
    void redimPreserve(int upper, const T& fill = T()) { items_.resize(std::size_t(std::max(upper + 1, 0)), fill); }
    void erase() { items_.clear(); }

    T& operator()(int i) { return items_[checked(i)]; }
    const T& operator()(int i) const { return items_[checked(i)]; }
    T& operator[](int i) { return (*this)(i); }
    const T& operator[](int i) const { return (*this)(i); }

    auto begin() { return items_.begin(); }
    auto end() { return items_.end(); }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }
    T* data() { return items_.data(); }
    const T* data() const { return items_.data(); }

private:
    std::size_t checked(int i) const
    {
        if (i < 0 || i >= int(items_.size()))
            Raise(ErrNo::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
        return std::size_t(i);
    }
    std::vector<T> items_;
};

// Two dimensions, 0..rows by 0..cols, stored row after row in one block.
template <class T>
class VbArray2 {
public:
    int ubound1() const { return rows_ - 1; }
    int ubound2() const { return cols_ - 1; }

    void redim(int upper1, int upper2, const T& fill = T())
    {
        rows_ = std::max(upper1 + 1, 0);
        cols_ = std::max(upper2 + 1, 0);
        items_.assign(std::size_t(rows_) * std::size_t(cols_), fill);
    }
    // Keeps every element that lies within both the old and the new bounds.
    void redimPreserve(int upper1, int upper2, const T& fill = T())
    {
        VbArray2 grown;
        grown.redim(upper1, upper2, fill);
        for (int r = 0; r < std::min(rows_, grown.rows_); ++r)
            for (int c = 0; c < std::min(cols_, grown.cols_); ++c)
                grown.items_[std::size_t(r) * grown.cols_ + c] = items_[std::size_t(r) * cols_ + c];
        *this = std::move(grown);
    }
    void erase() { redim(-1, -1); }

    T& operator()(int r, int c) { return items_[checked(r, c)]; }
    const T& operator()(int r, int c) const { return items_[checked(r, c)]; }
    T* row(int r) { return items_.data() + checked(r, 0); }
    const T* row(int r) const { return items_.data() + checked(r, 0); }

private:
    std::size_t checked(int r, int c) const
    {
        if (r < 0 || r >= rows_ || c < 0 || c >= cols_)
            Raise(ErrNo::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
        return std::size_t(r) * std::size_t(cols_) + std::size_t(c);
    }
    int rows_ = 0;
    int cols_ = 0;
    std::vector<T> items_;
};

} // namespace tallix
