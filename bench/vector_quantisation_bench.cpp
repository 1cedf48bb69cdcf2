// Vector quantisation against the plain loop and, where it is installed, FAISS on one thread: full search of blocks and one by one,
// trees, 16-bit data, and training.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kit/bench.h"
#include "qorsr.h"
#include "vector_quantisation_plain.h"

#if QORSR_HAVE_FAISS
#include <faiss/Clustering.h>
#include <faiss/IndexFlat.h>
#endif

namespace {

// Vectors in clusters that overlap, as features do.
std::vector<float> vectors(int32_t height, int32_t width, uint64_t seed) {
  uint64_t state = seed;
  const auto uniform = [&state] {
    state = state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<float>(state >> 40) * 0x1p-24F - 0.5F;
  };
  std::vector<float> all;
  for (int32_t r = 0; r < height; ++r) {
    const float centre = static_cast<float>(static_cast<int>(uniform() * 16.0F));
    for (int32_t j = 0; j < width; ++j) {
      const float noise = (uniform() + uniform() + uniform()) * 4.0F;
      all.push_back(std::sin(centre * static_cast<float>(j + 1)) * 3.0F + noise);
    }
  }
  return all;
}

struct Task {
  int32_t width, count, height;
  std::vector<float> book, queries;
  std::vector<int16_t> book16, queries16;

  Task(int32_t w, int32_t n, int32_t h) : width(w), count(n), height(h), book(vectors(n, w, 1)), queries(vectors(h, w, 2)) {
    for (const float x : book) book16.push_back(static_cast<int16_t>(x * 1000.0F));
    for (const float x : queries) queries16.push_back(static_cast<int16_t>(x * 1000.0F));
  }
  std::string name() const { return std::to_string(count) + " codewords of " + std::to_string(width); }
};

std::vector<int32_t> indices(4096);

template <class State, class T, class Make>
State* made(Make* make, const std::vector<T>& rows, int32_t width, int32_t size, int32_t mode) {
  State* state = nullptr;
  make(&state, rows.data(), width, width, static_cast<int32_t>(rows.size() / static_cast<std::size_t>(width)), size, mode);
  return state;
}

// A codebook that the module of a level makes when it is first searched.
template <class State, class T>
class Book {
 public:
  template <class Make>
  Book(Make* make, const std::vector<T>& rows, int32_t width, int32_t size, int32_t mode)
      : make_([=, &rows] { return made<State>(make, rows, width, size, mode); }) {}

  State* get() const {
    if (*state_ == nullptr) *state_ = make_();
    return *state_;
  }

 private:
  std::function<State*()> make_;
  std::shared_ptr<State*> state_ = std::make_shared<State*>(nullptr);
};
using Book32f = Book<CdbkState_32f, float>;
using Book16s = Book<CdbkState_16s, int16_t>;

void addSearches(const bench::Level& level, const Task& t) {
  const auto search = level.ours<decltype(qorsVQ_32f)>("qorsVQ_32f");
  const auto search16 = level.ours<decltype(qorsVQ_16s)>("qorsVQ_16s");
  const auto plain = level.plain<decltype(plainNearest_32f)>("plainNearest_32f");
  const auto plain16 = level.plain<decltype(plainNearest_16s)>("plainNearest_16s");
  const Task* p = &t;
  const double distances = static_cast<double>(t.height) * t.count;
  const std::string blocks = "full search, blocks, " + t.name(), single = "full search, one by one, " + t.name();
  const auto make = level.ours<decltype(qorsCdbkInitAlloc_L2_32f)>("qorsCdbkInitAlloc_L2_32f");
  const auto make16 = level.ours<decltype(qorsCdbkInitAlloc_L2_16s)>("qorsCdbkInitAlloc_L2_16s");
  const Book32f full(make, t.book, t.width, t.count, 1);
  const Book16s full16(make16, t.book16, t.width, t.count, 1);
  bench::add({blocks, "ours", level.name, distances, "distances"},
             [=] { search(p->queries.data(), p->width, indices.data(), p->height, full.get()); });
  bench::add({blocks, "plain", level.name},
             [=] { plain(p->queries.data(), p->height, p->book.data(), p->count, p->width, indices.data()); });
  bench::add({single, "ours", level.name, distances, "distances"}, [=] {
    for (int32_t r = 0; r < p->height; ++r)
      search(p->queries.data() + int64_t{r} * p->width, p->width, indices.data(), 1, full.get());
  });
  bench::add({single, "plain", level.name},
             [=] { plain(p->queries.data(), p->height, p->book.data(), p->count, p->width, indices.data()); });
  bench::add({blocks + ", 16-bit", "ours", level.name, distances, "distances"},
             [=] { search16(p->queries16.data(), p->width, indices.data(), p->height, full16.get()); });
  bench::add({blocks + ", 16-bit", "plain", level.name},
             [=] { plain16(p->queries16.data(), p->height, p->book16.data(), p->count, p->width, indices.data()); });
}

void addTree(const bench::Level& level, const Task& t, const std::vector<float>& rows) {
  const auto search = level.ours<decltype(qorsVQ_32f)>("qorsVQ_32f");
  const Task* p = &t;
  const auto make = level.ours<decltype(qorsCdbkInitAlloc_L2_32f)>("qorsCdbkInitAlloc_L2_32f");
  const Book32f tree(make, rows, t.width, t.count, 2), full(make, t.book, t.width, t.count, 1);
  const std::string name = "tree, " + t.name();
  bench::add({name, "ours", level.name, static_cast<double>(t.height), "vectors"},
             [=] { search(p->queries.data(), p->width, indices.data(), p->height, tree.get()); });
  bench::add({name, "full", level.name}, [=] { search(p->queries.data(), p->width, indices.data(), p->height, full.get()); });
}

void addTraining(const bench::Level& level, const std::vector<float>& rows, int32_t width, int32_t size, bool withPlain) {
  const auto height = static_cast<int32_t>(rows.size() / static_cast<std::size_t>(width));
  const auto make = level.ours<decltype(qorsCdbkInitAlloc_L2_32f)>("qorsCdbkInitAlloc_L2_32f");
  const auto release = level.ours<decltype(qorsCdbkFree_32f)>("qorsCdbkFree_32f");
  const auto train = level.plain<decltype(plainTrain_32f)>("plainTrain_32f");
  const std::vector<float>* p = &rows;
  const std::string name =
      "training, " + std::to_string(size) + " codewords of " + std::to_string(height) + " rows of " + std::to_string(width);
  bench::add({name, "ours", level.name, 1, "codebooks"}, [=] { release(made<CdbkState_32f>(make, *p, width, size, 2)); });
  if (!withPlain) return;
  static std::vector<float> book(1 << 20);
  bench::add({name, "plain", level.name}, [=] { train(p->data(), height, width, size, book.data()); });
}

#if QORSR_HAVE_FAISS
void addFaiss(const Task& t) {
  static std::vector<std::unique_ptr<faiss::IndexFlatL2>> kept;
  static std::vector<float> distances(4096);
  static std::vector<faiss::Index::idx_t> labels(4096);
  kept.push_back(std::make_unique<faiss::IndexFlatL2>(t.width));
  faiss::IndexFlatL2* const index = kept.back().get();
  index->add(t.count, t.book.data());
  const Task* p = &t;
  bench::add({"full search, blocks, " + t.name(), "FAISS", ""},
             [=] { index->search(p->height, p->queries.data(), 1, distances.data(), labels.data()); });
  bench::add({"full search, one by one, " + t.name(), "FAISS", ""}, [=] {
    for (int32_t r = 0; r < p->height; ++r)
      index->search(1, p->queries.data() + int64_t{r} * p->width, 1, distances.data(), labels.data());
  });
}
void addFaissTraining(const std::vector<float>& rows, int32_t width, int32_t size) {
  const auto height = static_cast<int32_t>(rows.size() / static_cast<std::size_t>(width));
  const std::vector<float>* p = &rows;
  bench::add({"training, " + std::to_string(size) + " codewords of " + std::to_string(height) + " rows of " + std::to_string(width),
              "FAISS, 20 rounds", ""},
             [=] {
               faiss::ClusteringParameters parameters;
               parameters.niter = 20;
               parameters.max_points_per_centroid = 1 << 20;
               parameters.min_points_per_centroid = 1;
               faiss::Clustering clustering(width, size, parameters);
               faiss::IndexFlatL2 index(width);
               clustering.train(height, p->data(), index);
             });
}
#endif

}  // namespace

int main(int argc, char** argv) {
  setenv("OMP_NUM_THREADS", "1", 1);  // peers compute with one thread, as we do
  setenv("OPENBLAS_NUM_THREADS", "1", 1);
  static const std::vector<Task> tasks = {{13, 64, 512},   {13, 1024, 512}, {39, 64, 512},
                                          {39, 1024, 512}, {2, 64, 512},    {8, 256, 512}};
  static const Task deep[] = {{13, 1024, 512}};
  static const auto rows = vectors(5000, 13, 3);
  for (const bench::Level& level : bench::levels()) {
    for (const Task& t : tasks) addSearches(level, t);
    for (const Task& t : deep) addTree(level, t, rows);
    addTraining(level, rows, 13, 64, true);
    addTraining(level, rows, 13, 256, level.name != "sse3" && level.name != "baseline");
  }
#if QORSR_HAVE_FAISS
  for (const Task& t : tasks) addFaiss(t);
  addFaissTraining(rows, 13, 64);
  addFaissTraining(rows, 13, 256);
#endif
  return bench::run(argc, argv);
}
