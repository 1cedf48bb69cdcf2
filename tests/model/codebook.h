// A plain model of codebooks: made, trained and searched step by step, as they are defined, with everything computed anew each time.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "qorsr.h"

namespace model {

template <class T>
using Row = std::vector<T>;
template <class T>
using Rows = std::vector<Row<T>>;

constexpr float kLargestFloat = std::numeric_limits<float>::max();

inline bool isBelow(double a, double b) { return b > a * 1.000001; }
inline bool isClose(double a, double b) { return std::fabs(std::fmax(a, b)) * static_cast<double>(0.0001F) >= std::fabs(a - b); }

// Weighted squared distance in float: eight lanes, the last (or last incomplete) eight elements first, lanes joined by halves.
template <class T>
float squaredDistance(const Row<T>& x, const Row<T>& c, const Row<T>& w) {
  const std::size_t n = x.size(), grouped = (n - 1) / 8 * 8, first = n < 8 ? 0 : n - 8;
  float lane[8] = {};
  const auto term = [&](std::size_t j) {
    const float d = static_cast<float>(x[j]) - static_cast<float>(c[j]);
    const float square = d * d;
    return square * static_cast<float>(w[j]);
  };
  for (std::size_t j = grouped; j < n; ++j) lane[j - first] = term(j);
  for (std::size_t j = 0; j < grouped; ++j) lane[j % 8] = lane[j % 8] + term(j);
  return ((lane[0] + lane[4]) + (lane[2] + lane[6])) + ((lane[1] + lane[5]) + (lane[3] + lane[7]));
}

// The smallest entry, the first of equal ones; a NaN is larger than every number.
inline std::size_t smallestEntry(const std::vector<float>& table) {
  std::size_t at = 0;
  for (std::size_t i = 1; i < table.size(); ++i) {
    if (table[i] < table[at] || (std::isnan(table[at]) && !std::isnan(table[i]))) at = i;
  }
  return at;
}

template <class T>
struct Node {
  float spread = 0;
  Row<T> centroid;
  int32_t codeword = 0, members = 0, depth = 1;
  std::unique_ptr<Node> left, right;
  std::vector<Node*> neighbours;

  bool leaf() const { return left == nullptr; }
};

// ---- Grids ----

struct Axis {
  float low, high, range;

  float width(int32_t cells) const { return range * 1.1F / static_cast<float>(cells); }
};
template <class T>
Axis axisOf(const Rows<T>& rows, std::size_t element, bool* closeToZero = nullptr) {
  T least = rows[0][element], most = least;
  for (const auto& row : rows) {
    if (row[element] < least) least = row[element];
    if (row[element] > most) most = row[element];
  }
  const auto m = static_cast<float>(least), M = static_cast<float>(most);
  if (closeToZero != nullptr) {
    *closeToZero =
        std::fabs(static_cast<double>(std::fmax(M, m))) * static_cast<double>(0.0001F) >= static_cast<double>(std::fabs(M - m));
  }
  return {m > 0 ? m * 0.9F : m * 1.1F, M > 0 ? M * 1.1F : M * 0.9F, std::fabs(M - m)};
}

// The cell of a quotient: -1 below, `cells` beyond the last.
template <class T>
int32_t cellOf(float quotient, int32_t cells) {
  if (quotient < 0) return -1;
  const double place = static_cast<double>(quotient) + (sizeof(T) == 2 ? 0.001 : 0.0);
  if (!(place < cells)) return cells;
  return static_cast<int32_t>(place);
}

template <class T>
struct Grid {
  int32_t columns = 0, rows = 0;
  Axis first{}, second{};
  std::vector<std::vector<int32_t>> lists;

  const std::vector<int32_t>& listFor(const Row<T>& x) const {
    const int32_t column = cellOf<T>((static_cast<float>(x[0]) - first.low) / first.width(columns), columns) + 1;
    if (x.size() == 1) return lists[static_cast<std::size_t>(column)];
    const int32_t row = cellOf<T>((second.high - static_cast<float>(x[1])) / second.width(rows), rows) + 1;
    return lists[static_cast<std::size_t>(row * (columns + 2) + column)];
  }
};

template <class T>
std::unique_ptr<Grid<T>> lineGrid(const Rows<T>& rows) {
  const Axis axis = axisOf(rows, 0);
  const auto cellOfRow = [&](const Row<T>& row, int32_t n) {
    const int32_t cell = cellOf<T>((static_cast<float>(row[0]) - axis.low) / axis.width(n), n);
    return cell < 0 ? 0 : cell > n - 1 ? n - 1 : cell;
  };
  const auto height = static_cast<float>(rows.size());
  const auto cost = [&](int32_t n) {
    if (axis.range < 1e-5F) return kLargestFloat;
    std::vector<int> members(static_cast<std::size_t>(n));
    for (const auto& row : rows) ++members[static_cast<std::size_t>(cellOfRow(row, n))];
    for (const int count : members) {
      if (count == 0) return kLargestFloat;
    }
    return 2.0F * height / static_cast<float>(n);
  };
  int32_t n = 4;
  while (cost(n) - cost(n + 1) > 0.05F * cost(n)) ++n;
  const float most = height / 5.0F;
  if (!isBelow(static_cast<double>(cost(n)), static_cast<double>(most)) &&
      !isClose(static_cast<double>(cost(n)), static_cast<double>(most)))
    return nullptr;
  auto grid = std::make_unique<Grid<T>>();
  grid->columns = n;
  grid->first = axis;
  grid->lists.resize(static_cast<std::size_t>(n) + 2);
  for (int32_t c = 0; c < n; ++c) {
    auto& list = grid->lists[static_cast<std::size_t>(c) + 1];
    for (std::size_t r = 0; r < rows.size(); ++r) {
      if (cellOfRow(rows[r], n) == c) list.push_back(static_cast<int32_t>(r));
    }
    const auto addNearest = [&](bool below) {
      float best = kLargestFloat;
      int32_t found = -1;
      for (std::size_t r = 0; r < rows.size(); ++r) {
        const int32_t cell = cellOfRow(rows[r], n);
        if (below ? cell >= c : cell <= c) continue;
        const float x = static_cast<float>(rows[r][0]);
        const float distance = std::fabs(x - axis.low - axis.width(n) * static_cast<float>(below ? c : c + 1));
        if (distance < best) {
          best = distance;
          found = static_cast<int32_t>(r);
        }
      }
      if (found >= 0) list.push_back(found);
    };
    if (c > 0) addNearest(true);
    if (c < n - 1) addNearest(false);
  }
  grid->lists.front() = grid->lists[1];
  grid->lists.back() = grid->lists[static_cast<std::size_t>(n)];
  return grid;
}

template <class T>
std::unique_ptr<Grid<T>> planeGrid(const Rows<T>& rows, const Row<T>& weights) {
  bool close[2];
  const Axis first = axisOf(rows, 0, &close[0]), second = axisOf(rows, 1, &close[1]);
  const auto candidates = [&](int32_t rowCount, int32_t columnCount, int32_t r, int32_t c) {
    const float left = first.low + static_cast<float>(c) * first.width(columnCount);
    const float right = first.low + static_cast<float>(c + 1) * first.width(columnCount);
    const float bottom = second.high - static_cast<float>(r + 1) * second.width(rowCount);
    const float top = second.high - static_cast<float>(r) * second.width(rowCount);
    std::vector<float> lower;
    float value = kLargestFloat;
    for (const auto& row : rows) {
      const auto x = static_cast<float>(row[0]), y = static_cast<float>(row[1]);
      const auto w0 = static_cast<float>(weights[0]), w1 = static_cast<float>(weights[1]);
      const auto to = [&](float px, float py) {
        const float dx = x - px, dy = y - py;
        const float a = dx * dx, b = dy * dy;
        return a * w0 + b * w1;
      };
      std::vector<float> distances = {to(left, top), to(right, top), to(left, bottom), to(right, bottom)};
      if (left <= x && x <= right) {
        distances.push_back(to(x, top));
        distances.push_back(to(x, bottom));
      }
      if (bottom <= y && y <= top) {
        distances.push_back(to(left, y));
        distances.push_back(to(right, y));
      }
      float least = distances[0], most = distances[0];
      for (const float d : distances) {
        if (isBelow(static_cast<double>(d), static_cast<double>(least))) least = d;
        if (isBelow(static_cast<double>(most), static_cast<double>(d))) most = d;
      }
      lower.push_back(least);
      if (isBelow(static_cast<double>(most), static_cast<double>(value))) value = most;
    }
    std::vector<int32_t> list;
    for (std::size_t k = 0; k < rows.size(); ++k) {
      const auto least = static_cast<double>(lower[k]), v = static_cast<double>(value);
      if (isBelow(least, v) || isClose(least, v)) list.push_back(static_cast<int32_t>(k));
    }
    return list;
  };
  const auto cost = [&](int32_t rowCount, int32_t columnCount) {
    if (close[0] || close[1]) return kLargestFloat;
    std::size_t total = 0;
    for (int32_t r = 0; r < rowCount; ++r) {
      for (int32_t c = 0; c < columnCount; ++c) total += candidates(rowCount, columnCount, r, c).size();
    }
    return static_cast<float>(total) / static_cast<float>(rowCount * columnCount);
  };
  int32_t rowCount = 4, columnCount = 4;
  float best = cost(4, 4);
  while (true) {
    const float a = cost(rowCount + 1, columnCount), b = cost(rowCount, columnCount + 1);
    if (isBelow(static_cast<double>(a), static_cast<double>(b))) {
      if (!(best - a > 0.05F * best)) break;
      ++rowCount;
      best = a;
    } else {
      if (!(best - b > 0.05F * best)) break;
      ++columnCount;
      best = b;
    }
  }
  const float most = static_cast<float>(rows.size()) / 10.0F;
  if (!isBelow(static_cast<double>(best), static_cast<double>(most)) &&
      !isClose(static_cast<double>(best), static_cast<double>(most)))
    return nullptr;
  auto grid = std::make_unique<Grid<T>>();
  grid->columns = columnCount;
  grid->rows = rowCount;
  grid->first = first;
  grid->second = second;
  const int32_t R = rowCount, C = columnCount;
  grid->lists.resize(static_cast<std::size_t>((R + 2) * (C + 2)));
  const auto at = [&](int32_t row, int32_t column) -> std::vector<int32_t>& {
    return grid->lists[static_cast<std::size_t>(row * (C + 2) + column)];
  };
  for (int32_t r = 0; r < R; ++r) {
    for (int32_t c = 0; c < C; ++c) at(r + 1, c + 1) = candidates(R, C, r, c);
  }
  const auto unite = [&](int32_t row, int32_t column) {  // of a row of cells and a column, from 1; 0: none
    std::vector<bool> marked(rows.size());
    for (int32_t c = 1; row > 0 && c <= C; ++c) {
      for (const int32_t k : at(row, c)) marked[static_cast<std::size_t>(k)] = true;
    }
    for (int32_t r = 1; column > 0 && r <= R; ++r) {
      for (const int32_t k : at(r, column)) marked[static_cast<std::size_t>(k)] = true;
    }
    std::vector<int32_t> list;
    for (std::size_t k = 0; k < marked.size(); ++k) {
      if (marked[k]) list.push_back(static_cast<int32_t>(k));
    }
    return list;
  };
  at(0, 0) = unite(1, 1);
  at(0, C + 1) = unite(1, C);
  at(R + 1, 0) = unite(R, 1);
  at(R + 1, C + 1) = unite(R, C);
  for (int32_t c = 1; c <= C; ++c) {
    at(0, c) = unite(1, 0);
    at(R + 1, c) = unite(R, 0);
  }
  for (int32_t r = 1; r <= R; ++r) {
    at(r, 0) = unite(0, 1);
    at(r, C + 1) = unite(0, C);
  }
  return grid;
}

// ---- Codebooks ----

template <class T>
class Codebook {
 public:
  // Trains, or takes every row; the status as of the library.
  QorStatus make(const Rows<T>& rows, const Row<T>& weights, int32_t size, int32_t mode) {
    rows_ = rows;
    weights_ = weights;
    mode_ = mode;
    weighted_ = false;
    for (const T w : weights) weighted_ = weighted_ || w != T(1);
    if (mode == 1) {
      book_ = rows;
      if (weights.size() == 2 && rows.size() > 10) grid_ = planeGrid(rows, weights);
      if (weights.size() == 1 && rows.size() >= 11) grid_ = lineGrid(rows);
      return static_cast<std::size_t>(size) == rows.size() ? qorStatusOk : qorStatusCdbkSizeChanged;
    }
    return grow(size);
  }
  // Ready rows.
  void wrap(const Rows<T>& rows, int32_t mode) {
    rows_ = book_ = rows;
    weights_ = Row<T>(rows[0].size(), T(1));
    mode_ = mode;
  }

  const Rows<T>& book() const { return book_; }
  bool hasGrid() const { return grid_ != nullptr; }
  const std::vector<std::vector<int32_t>>& gridLists() const { return grid_->lists; }
  const Node<T>& root() const { return *root_; }
  int repairs() const { return repairs_; }  // of the training: rounds that found both children in one place
  int depth() const {
    int most = 0;
    for (const Node<T>* leaf : leaves_) most = leaf->depth > most ? leaf->depth : most;
    return most;
  }

  struct Found {
    int32_t index = -1;
    float square = kLargestFloat;
  };

  Found search(const Row<T>& x) const {
    Found found;
    if (mode_ == 1 && grid_ != nullptr) {
      for (const int32_t k : grid_->listFor(x)) takeIfBelow(found, x, k);
    } else if (mode_ == 1 && weighted_) {
      for (std::size_t k = 0; k < book_.size(); ++k) takeIfBelow(found, x, static_cast<int32_t>(k));
    } else if (mode_ == 1) {
      found = {0, distance(x, book_[0])};
      for (std::size_t k = 1; k < book_.size(); ++k) {
        const float d = distance(x, book_[k]);
        if (d < found.square) found = {static_cast<int32_t>(k), d};
      }
    } else {
      const Node<T>* leaf = weighted_ ? descendByScores(x) : descend(x);
      found = {leaf->codeword, distance(x, leaf->centroid)};
    }
    return found;
  }

  std::vector<float> distances(const Row<T>& x) const {
    std::vector<float> table;
    for (const auto& row : book_) table.push_back(distance(x, row));
    return table;
  }

  float distance(const Row<T>& a, const Row<T>& b) const { return squaredDistance(a, b, weights_); }

  // Whose rows a descent compares: a leaf stands for both of its children.
  static std::array<const Node<T>*, 4> grandchildren(const Node<T>* node) {
    const Node<T>*l = node->left.get(), *r = node->right.get();
    return {l->leaf() ? l : l->left.get(), l->leaf() ? l : l->right.get(), r->leaf() ? r : r->left.get(),
            r->leaf() ? r : r->right.get()};
  }

 private:
  void takeIfBelow(Found& found, const Row<T>& x, int32_t k) const {
    const float d = distance(x, book_[static_cast<std::size_t>(k)]);
    if (isBelow(static_cast<double>(d), static_cast<double>(found.square))) found = {k, d};
  }

  // ---- Searching a tree ----

  const Node<T>* descend(const Row<T>& x) const {
    const Node<T>* node = root_.get();
    while (!node->leaf()) {
      float d[4];
      for (std::size_t i = 0; i < 4; ++i) d[i] = distance(x, grandchildren(node)[i]->centroid);
      const float left = d[1] < d[0] ? d[1] : d[0], right = d[3] < d[2] ? d[3] : d[2];
      node = right < left ? node->right.get() : node->left.get();
    }
    float own = distance(x, node->centroid);
    for (std::size_t i = 0; i < node->neighbours.size();) {
      const float d = distance(x, node->neighbours[i]->centroid);
      if (d < own) {
        own = d;
        node = node->neighbours[i];
        i = 0;
      } else {
        ++i;
      }
    }
    return node;
  }

  double listedScore(const Row<T>& x, const Row<T>& row) const {
    const T* list[1] = {row.data()};
    const auto n = static_cast<int32_t>(x.size());
    if constexpr (sizeof(T) == 4) {
      float score = 0;
      qorsLogGauss_32f_D2L(list, x.data(), weights_.data(), n, &score, 1, 0.0F);
      return static_cast<double>(score);
    } else {
      int32_t score = 0;
      qorsLogGauss_16s32s_D2LSfs(list, x.data(), weights_.data(), n, &score, 1, 0, scaleFactor());
      return score;
    }
  }
  double singleScore(const Row<T>& x, const Row<T>& row) const {
    const auto n = static_cast<int32_t>(x.size());
    if constexpr (sizeof(T) == 4) {
      float score = 0;
      qorsLogGaussSingle_32f(row.data(), x.data(), weights_.data(), n, &score, 0.0F);
      return static_cast<double>(score);
    } else {
      int32_t score = 0;
      qorsLogGaussSingle_16s32s_Sfs(row.data(), x.data(), weights_.data(), n, &score, 0, scaleFactor());
      return score;
    }
  }
  int32_t scaleFactor() const {
    int32_t log = 0;
    while ((std::size_t{2} << log) <= weights_.size()) ++log;
    return log + 1;
  }

  const Node<T>* descendByScores(const Row<T>& x) const {
    const Node<T>* node = root_.get();
    while (!node->leaf()) {
      double s[4];
      for (std::size_t i = 0; i < 4; ++i) s[i] = listedScore(x, grandchildren(node)[i]->centroid);
      const bool left = (s[0] > s[2] * 1.000001 && s[0] > s[3] * 1.000001) || (s[1] > s[2] * 1.000001 && s[1] > s[3] * 1.000001);
      node = left ? node->left.get() : node->right.get();
    }
    if (node->neighbours.empty()) return node;
    double own = singleScore(x, node->centroid);
    for (std::size_t i = 0; i < node->neighbours.size();) {
      const double s = listedScore(x, node->neighbours[i]->centroid);
      if (s > 1.000001 * own && !isClose(s, own)) {
        own = s;
        node = node->neighbours[i];
        i = 0;
      } else {
        ++i;
      }
    }
    return node;
  }

  // ---- Growing a tree ----

  QorStatus grow(int32_t size) {
    const std::size_t height = rows_.size();
    label_.assign(height, 0);
    stored_.assign(height, 0.0F);
    root_ = std::make_unique<Node<T>>();
    leaves_ = {root_.get()};
    root_->members = static_cast<int32_t>(height);
    if (height == 1) {
      root_->centroid = rows_[0];
    } else {
      recomputeCentroids();
      float least = static_cast<float>(root_->centroid[0]), most = least;
      for (const T c : root_->centroid) {
        if (static_cast<float>(c) < least) least = static_cast<float>(c);
        if (static_cast<float>(c) > most) most = static_cast<float>(c);
      }
      const double noise = std::fmax(static_cast<double>(most) * 1e-6, static_cast<double>(least) * -1e-6);
      float largest = 0;
      for (std::size_t r = 0; r < height; ++r) {
        const float d = distance(rows_[r], root_->centroid);
        if (sizeof(T) == 4 && !isBelow(noise, static_cast<double>(d))) continue;
        stored_[r] = d;
        if (isBelow(static_cast<double>(largest), static_cast<double>(d))) largest = d;
      }
      root_->spread = 2.0F * largest;
    }
    QorStatus status = qorStatusOk;
    while (leaves_.size() < static_cast<std::size_t>(size)) {
      const int s = selectLeaf();
      if (s < 0) {
        status = qorStatusCdbkSizeChanged;
        break;
      }
      const QorStatus bad = split(static_cast<std::size_t>(s));
      if (bad != qorStatusOk) return bad;
    }
    for (std::size_t i = 0; i < leaves_.size(); ++i) {
      leaves_[i]->codeword = static_cast<int32_t>(i);
      book_.push_back(leaves_[i]->centroid);
    }
    finish(root_.get());
    findNeighbours();
    return status;
  }

  int selectLeaf() const {
    int found = -1;
    float best = 0;
    int32_t bestMembers = 0;
    for (std::size_t i = 0; i < leaves_.size(); ++i) {
      const Node<T>& leaf = *leaves_[i];
      bool better;
      if (mode_ == 2) {
        better = isBelow(static_cast<double>(best), static_cast<double>(leaf.spread));
      } else {
        better = isBelow(0, static_cast<double>(leaf.spread)) &&
                 (sizeof(T) == 4 ? isBelow(static_cast<double>(static_cast<float>(bestMembers)),
                                           static_cast<double>(static_cast<float>(leaf.members)))
                                 : leaf.members > bestMembers);
      }
      if (!better) continue;
      found = static_cast<int>(i);
      best = leaf.spread;
      bestMembers = leaf.members;
    }
    return found;
  }

  void recomputeCentroids() {
    const std::size_t n = weights_.size();
    for (std::size_t i = 0; i < leaves_.size(); ++i) {
      int32_t count = 0;
      std::vector<float> sum(n, 0.0F);
      std::vector<double> wide(n, 0.0);
      for (std::size_t r = 0; r < rows_.size(); ++r) {
        if (label_[r] != i) continue;
        ++count;
        for (std::size_t j = 0; j < n; ++j) {
          sum[j] = sum[j] + static_cast<float>(rows_[r][j]);
          wide[j] = wide[j] + static_cast<double>(rows_[r][j]);
        }
      }
      leaves_[i]->members = count;
      leaves_[i]->centroid.resize(n);
      for (std::size_t j = 0; j < n; ++j) {
        if constexpr (sizeof(T) == 4) {
          leaves_[i]->centroid[j] = sum[j] / static_cast<float>(count);
        } else {
          leaves_[i]->centroid[j] = static_cast<T>(std::nearbyint(wide[j] * (1.0 / count)));
        }
      }
    }
  }

  QorStatus split(std::size_t s) {
    Node<T>* const parent = leaves_[s];
    const int32_t parentMembers = parent->members;
    if (parentMembers < 2) return qorStatusBadSize;
    const std::size_t t = leaves_.size();
    parent->left = std::make_unique<Node<T>>();
    parent->right = std::make_unique<Node<T>>();
    parent->left->depth = parent->right->depth = parent->depth + 1;
    leaves_.push_back(parent->left.get());
    leaves_[s] = parent->right.get();
    for (int32_t i = 0; i < parentMembers / 2; ++i) {
      float best = kLargestFloat;
      std::size_t found = rows_.size();
      for (std::size_t r = 0; r < rows_.size(); ++r) {
        if (label_[r] == s && isBelow(static_cast<double>(stored_[r]), static_cast<double>(best))) {
          best = stored_[r];
          found = r;
        }
      }
      if (found == rows_.size()) break;
      label_[found] = t;
      stored_[found] = kLargestFloat;
    }
    float total = 0;
    for (int round = 0; round < 20; ++round) {
      recomputeCentroids();
      if (static_cast<double>(distance(leaves_[s]->centroid, leaves_[t]->centroid)) <= 1e-6) {
        ++repairs_;
        if (!repair(s, t, parentMembers)) return qorStatusBadArgument;
      }
      const float previous = total;
      int moves = 0;
      total = 0;
      for (std::size_t r = 0; r < rows_.size(); ++r) {
        float best = kLargestFloat;
        std::size_t winner = label_[r];
        for (std::size_t i = 0; i < leaves_.size(); ++i) {
          const float d = distance(rows_[r], leaves_[i]->centroid);
          if (isBelow(static_cast<double>(d), static_cast<double>(best))) {
            best = d;
            winner = i;
          }
        }
        if (winner == label_[r] || leaves_[label_[r]]->members < 2) {
          stored_[r] = distance(rows_[r], leaves_[label_[r]]->centroid);
        } else {
          --leaves_[label_[r]]->members;
          ++leaves_[winner]->members;
          label_[r] = winner;
          stored_[r] = best;
          ++moves;
        }
        total = total + stored_[r];
      }
      const double delta = static_cast<double>(total) - static_cast<double>(previous);
      if (moves == 0 && !(delta > 0.0001 * static_cast<double>(total)) && !(static_cast<double>(total) * -0.0001 > delta)) break;
    }
    for (Node<T>* leaf : leaves_) leaf->spread = 0;
    for (std::size_t r = 0; r < rows_.size(); ++r) {
      float& spread = leaves_[label_[r]]->spread;
      if (isBelow(static_cast<double>(spread), static_cast<double>(stored_[r]))) spread = stored_[r];
    }
    for (Node<T>* leaf : leaves_) leaf->spread = leaf->members < 2 ? 0.0F : 2.0F * leaf->spread;
    return qorStatusOk;
  }

  bool repair(std::size_t s, std::size_t t, int32_t parentMembers) {
    Row<T>& cA = leaves_[t]->centroid;
    const Row<T>& cB = leaves_[s]->centroid;
    const auto theirs = [&](std::size_t r) { return label_[r] == s || label_[r] == t; };
    std::size_t p = 0;
    while (p < rows_.size() && !theirs(p)) ++p;
    for (int32_t iteration = 1;; ++iteration) {
      if (p >= rows_.size()) return false;
      if (static_cast<double>(distance(rows_[p], cA)) < 1e-5) {
        do {
          ++p;
        } while (p < rows_.size() && !(theirs(p) && static_cast<double>(distance(rows_[p], cA)) >= 1e-5));
      }
      if (p >= rows_.size() || iteration > 1000) return false;
      for (std::size_t j = 0; j < cA.size(); ++j) {
        if constexpr (sizeof(T) == 4) {
          const float factor = static_cast<float>(iteration) / 100.0F;
          cA[j] = cA[j] + factor * ((cA[j] + rows_[p][j]) / 2.0F - cA[j]);
        } else {
          const double c = cA[j], factor = iteration / 100.0;
          const double moved = std::trunc(c + factor * ((c + rows_[p][j]) / 2.0 - c));
          cA[j] = moved < -32768.0 || moved > 32767.0 ? T(-32768) : static_cast<T>(moved);
        }
      }
      float sum = 0;
      for (std::size_t r = 0; r < rows_.size(); ++r) {
        if (!theirs(r)) continue;
        const float dA = distance(rows_[r], cA), dB = distance(rows_[r], cB);
        sum = sum + std::fabs(dA == 0.0F ? dA - dB : (dA - dB) / dA);
      }
      if (!(parentMembers * 1e-6 >= static_cast<double>(sum))) return true;
    }
  }

  void finish(Node<T>* node) {
    if (node->leaf()) return;
    finish(node->left.get());
    finish(node->right.get());
    const int32_t l = node->left->members, r = node->right->members;
    for (std::size_t j = 0; j < weights_.size(); ++j) {
      if constexpr (sizeof(T) == 4) {
        float sum = 0;
        for (int32_t i = 0; i < l; ++i) sum = sum + node->left->centroid[j];
        for (int32_t i = 0; i < r; ++i) sum = sum + node->right->centroid[j];
        node->centroid[j] = sum / static_cast<float>(l + r);
      } else {
        double sum = 0;
        for (int32_t i = 0; i < l; ++i) sum += node->left->centroid[j];
        for (int32_t i = 0; i < r; ++i) sum += node->right->centroid[j];
        node->centroid[j] = static_cast<T>(std::trunc(sum / (l + r)));
      }
    }
  }

  void findNeighbours() {
    const std::size_t count = leaves_.size();
    if (count < 3) return;
    std::size_t m = 0;
    while ((std::size_t{2} << m) <= count) ++m;
    if (m < 4) m = 4;
    const std::size_t length = count > (std::size_t{1} << m) ? m + 1 : m;
    for (std::size_t i = 0; i < count; ++i) {
      std::vector<float> table;
      for (const Node<T>* other : leaves_) table.push_back(distance(leaves_[i]->centroid, other->centroid));
      table[i] = kLargestFloat;
      std::size_t choice = 0;
      for (std::size_t k = 0; k < length; ++k) {
        if (k < count) {
          choice = smallestEntry(table);
          table[choice] = kLargestFloat;
        }
        leaves_[i]->neighbours.push_back(leaves_[choice]);
      }
    }
  }

  Rows<T> rows_, book_;
  Row<T> weights_;
  int32_t mode_ = 0;
  bool weighted_ = false;
  std::unique_ptr<Grid<T>> grid_;
  std::unique_ptr<Node<T>> root_;
  std::vector<Node<T>*> leaves_;
  std::vector<std::size_t> label_;
  std::vector<float> stored_;
  int repairs_ = 0;
};

}  // namespace model
