#include "model_plots.h"

#include <algorithm>
#include <cmath>

#include "common/gnuplot.h"
#include "common/text.h"

namespace words {
namespace {

using program::fixed;
using program::quoted;

constexpr size_t meansAcross = 5;
constexpr size_t methodsCompared = 3;  // of each split: a colour a method, a dash a split
constexpr const char* methodColours[methodsCompared] = {"#7b3294", "#1b9e77", "#d95f02"};

// Mean of a state's mixture, without the derivatives: a state a row.
Matrix staticMeans(const WordModel& model, int width) {
  Matrix means(width, model.size());
  for (int s = 0; s < model.size(); ++s) {
    const Mixture& mixture = model.states[static_cast<size_t>(s)];
    for (int g = 0; g < mixture.count(); ++g) {
      for (int c = 0; c < width; ++c) means.row(c)[s] += mixture.weights[static_cast<size_t>(g)] * mixture.means.row(g)[c];
    }
  }
  return means;
}

// Every other order; the one of order 0, if it is there, stands behind the others.
std::string orderTics(int cepstra, int width) {
  std::string tics;
  for (int order = 2; order <= cepstra; order += 2) {
    tics += (tics.empty() ? "" : ", ") + quoted(std::to_string(order)) + " " + std::to_string(order);
  }
  if (width > cepstra) tics += (tics.empty() ? "" : ", ") + quoted("0") + " " + std::to_string(width);
  return tics;
}

}  // namespace

std::string drawHistory(const std::filesystem::path& png, const std::vector<Iteration>& history) {
  std::string script, plot;
  for (size_t first = 0, stage = 0; first < history.size(); ++stage) {
    size_t last = first;
    std::vector<double> x;
    std::vector<float> y;
    while (last < history.size() && history[last].stage == history[first].stage &&
           history[last].gaussians == history[first].gaussians) {
      x.push_back(static_cast<double>(last + 1));
      y.push_back(static_cast<float>(history[last].logLikelihood));
      ++last;
    }
    const std::string name = "stage" + std::to_string(stage);
    script += program::curveBlock(name, x, y);
    plot += (plot.empty() ? "plot $" : ", $") + name + " using 1:2 with linespoints pt 7 ps 0.7 lw 2 title " +
            quoted(history[first].stage + ", " + std::to_string(history[first].gaussians) + " Gaussians");
    first = last;
  }
  return program::drawPng(
      png, 900, 460,
      script + "set linetype 5 lc rgb '#a65628'\nset key bottom right\nset grid lc rgb '#d0d4da'\nset xlabel 'iteration'\n" +
          "set ylabel 'log likelihood a frame'\n" + plot + "\n");
}

std::string drawMeans(const std::filesystem::path& png, const ModelFile& models) {
  const size_t count = std::min(models.words.size(), meansShown), across = std::min(count, meansAcross);
  const size_t down = (count + across - 1) / across;
  const int width = staticWidth(models.frontEnd);
  std::string script = "set multiplot layout " + std::to_string(down) + "," + std::to_string(across) +
                       "\nset palette defined (-1 '#2166ac', 0 '#f7f7f7', 1 '#b2182b')\nset cbrange [-2:2]\nunset colorbox\n"
                       "set tics out nomirror\nset xlabel 'state'\nset ylabel 'cepstrum'\nset ytics (" +
                       orderTics(models.frontEnd.cepstra, width) + ")\n";
  for (size_t w = 0; w < count; ++w) {
    const WordModel& model = models.models.models[w];
    const Matrix means = staticMeans(model, width);
    const std::string name = "means" + std::to_string(w);
    script += program::matrixBlock(name, means.values.data(), static_cast<size_t>(width), static_cast<size_t>(model.size())) +
              "set title " + quoted(models.words[static_cast<size_t>(models.models.words[w])]) +
              "\nset xrange [0.5:" + fixed(model.size() + 0.5, 1) + "]\nset yrange [0.5:" + fixed(width + 0.5, 1) + "]\nplot $" +
              name + " matrix using ($1+1):($2+1):3 with image notitle\n";
  }
  return program::drawPng(png, static_cast<int>(230 * across), static_cast<int>(230 * down), script + "unset multiplot\n");
}

std::string drawAccuracies(const std::filesystem::path& png, const std::vector<std::string>& conditions,
                           const std::vector<AccuracyCurve>& curves) {
  std::string script, plot, tics;
  for (size_t i = 0; i < conditions.size(); ++i) tics += (i == 0 ? "" : ", ") + quoted(conditions[i]) + " " + std::to_string(i);
  for (size_t c = 0; c < curves.size(); ++c) {
    std::vector<double> x;
    std::vector<float> y;
    for (size_t i = 0; i < curves[c].percent.size(); ++i) {
      x.push_back(static_cast<double>(i));
      y.push_back(static_cast<float>(curves[c].percent[i]));
    }
    const std::string name = "curve" + std::to_string(c);
    script += program::curveBlock(name, x, y);
    plot += (plot.empty() ? "plot $" : ", $") + name + " using 1:2 with linespoints pt 7 lw 2 lc rgb '" +
            methodColours[c % methodsCompared] + "' dt " + std::to_string(c / methodsCompared + 1) + " title " +
            quoted(curves[c].title);
  }
  return program::drawPng(png, 900, 460,
                          script +
                              "set key outside bottom center horizontal maxcols 2\nset grid lc rgb '#d0d4da'\nset xrange [-0.2:" +
                              fixed(static_cast<double>(conditions.size()) - 0.8, 1) + "]\nset yrange [0:102]\nset xtics (" + tics +
                              ")\nset ylabel 'accuracy, %'\n" + plot + "\n");
}

}  // namespace words
