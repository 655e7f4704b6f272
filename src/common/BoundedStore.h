#pragma once
// Fixed arrays with the system's bounds (0..N). put() past the bound does nothing, as a
// statement that fails is passed over; checked() throws, for procedures with an error exit.

#include "common/RuntimeError.h"

#include <QString>

#include <optional>
#include <vector>

namespace orbline {

template <typename T>
class BoundedArray {
  public:
    explicit BoundedArray(qsizetype upperBound) : items_(static_cast<size_t>(upperBound + 1)) {}

    qsizetype upperBound() const { return static_cast<qsizetype>(items_.size()) - 1; }
    bool contains(qsizetype i) const { return i >= 0 && i <= upperBound(); }

    void put(qsizetype i, const T& value) {
        if (contains(i)) items_[static_cast<size_t>(i)] = value;
    }
    std::optional<T> get(qsizetype i) const {
        if (!contains(i)) return std::nullopt;
        return items_[static_cast<size_t>(i)];
    }
    T& checked(qsizetype i) {
        if (!contains(i)) throw RuntimeError(errors::SubscriptOutOfRange());
        return items_[static_cast<size_t>(i)];
    }
    const T& checked(qsizetype i) const {
        if (!contains(i)) throw RuntimeError(errors::SubscriptOutOfRange());
        return items_[static_cast<size_t>(i)];
    }
    void clear() { std::fill(items_.begin(), items_.end(), T{}); }

  private:
    std::vector<T> items_;
};

// Two-dimensional text table, rows and columns 0..bound.
class BoundedTable {
  public:
    BoundedTable(qsizetype rowBound, qsizetype columnBound)
        : rows_(rowBound + 1),
          columns_(columnBound + 1),
          cells_(static_cast<size_t>(rows_ * columns_)) {}

    qsizetype rowBound() const { return rows_ - 1; }
    qsizetype columnBound() const { return columns_ - 1; }
    bool contains(qsizetype row, qsizetype column) const {
        return row >= 0 && row < rows_ && column >= 0 && column < columns_;
    }
    void put(qsizetype row, qsizetype column, const QString& value) {
        if (contains(row, column)) cells_[index(row, column)] = value;
    }
    std::optional<QString> get(qsizetype row, qsizetype column) const {
        if (!contains(row, column)) return std::nullopt;
        return cells_[index(row, column)];
    }
    QString& checked(qsizetype row, qsizetype column) {
        if (!contains(row, column)) throw RuntimeError(errors::SubscriptOutOfRange());
        return cells_[index(row, column)];
    }
    const QString& checked(qsizetype row, qsizetype column) const {
        if (!contains(row, column)) throw RuntimeError(errors::SubscriptOutOfRange());
        return cells_[index(row, column)];
    }
    void clear() { std::fill(cells_.begin(), cells_.end(), QString()); }

  private:
    size_t index(qsizetype row, qsizetype column) const {
        return static_cast<size_t>(row * columns_ + column);
    }
    qsizetype rows_;
    qsizetype columns_;
    std::vector<QString> cells_;
};

}  // namespace orbline
