#include "report.h"

#include <algorithm>
#include <cstdio>

#include "common/files.h"
#include "common/html.h"
#include "common/text.h"

namespace words {
namespace {

using program::escaped;
using program::fixed;
using program::htmlTable;
using program::percent;
using program::timesRealTime;

constexpr size_t mostRight = 4;
constexpr size_t tabulatedWrong = 200;
constexpr size_t fewWords = 20;  // beyond that the confusion matrix is set small

std::string counted(const Tally& tally) { return std::to_string(tally.right) + " of " + std::to_string(tally.all); }

std::string scoreText(int word, float value) { return word < 0 ? "-" : fixed(static_cast<double>(value), 4); }

std::string recordingName(const Run& run, const Result& result) { return run.corpus.recordings[result.recording].name; }
std::string nearestName(const Run& run, const Result& result) {
  return result.decision.nearest ? run.corpus.recordings[*result.decision.nearest].name : "-";
}

std::string countedRecordings(const Corpus& corpus) {
  return std::to_string(corpus.recordings.size()) + " recordings of " + std::to_string(corpus.words.size()) + " words by " +
         std::to_string(corpus.speakers.size()) + " speakers, " + fixed(corpus.seconds(), 1) + " s";
}

void printTallies(const char* title, const std::vector<std::string>& names, const std::vector<Tally>& tallies) {
  std::printf("%s\n", title);
  size_t width = 8;
  for (const std::string& name : names) width = std::max(width, name.size());
  for (size_t i = 0; i < names.size(); ++i) {
    if (tallies[i].all == 0) continue;
    std::printf("  %-*s %9s   %s\n", static_cast<int>(width), names[i].c_str(), percent(tallies[i].right, tallies[i].all).c_str(),
                counted(tallies[i]).c_str());
  }
}

std::string resultsTable(const Run& run) {
  std::vector<std::vector<std::string>> rows = {
      {"recording", "word", "recognised", "right", run.scoreName, "second", "second " + run.scoreName}};
  if (run.byTemplates) rows[0].emplace_back("nearest");
  for (const Result& result : run.results) {
    const Decision& d = result.decision;
    rows.push_back({recordingName(run, result), run.corpus.recordings[result.recording].word, heardWord(run.corpus, d.word),
                    isRight(run.corpus, result) ? "yes" : "no", scoreText(d.word, d.score),
                    d.secondWord < 0 ? "-" : heardWord(run.corpus, d.secondWord), scoreText(d.secondWord, d.secondScore)});
    if (run.byTemplates) rows.back().push_back(nearestName(run, result));
  }
  return program::tabSeparated(rows);
}

std::string confusionTable(const Run& run, const Score& score) {
  std::vector<std::vector<std::string>> rows = {{"said"}};
  for (const std::string& word : run.corpus.words) rows[0].push_back(word);
  rows[0].emplace_back("(nothing)");
  for (size_t said = 0; said < score.confusion.size(); ++said) {
    std::vector<std::string>& row = rows.emplace_back(1, run.corpus.words[said]);
    for (const size_t count : score.confusion[said]) row.push_back(std::to_string(count));
  }
  return program::tabSeparated(rows);
}

std::string confusionCell(size_t count, size_t all, bool right) {
  if (count == 0) return "<td></td>";
  const double share = static_cast<double>(count) / static_cast<double>(all);
  return std::string("<td style=\"background:rgba(") + (right ? "21,112,58" : "179,38,30") + "," + fixed(0.12 + 0.68 * share, 2) +
         ")" + (share > 0.6 ? ";color:#fff" : "") + "\">" + std::to_string(count) + "</td>";
}

// Rows: what was said; columns: what was recognised. The darker, the larger the share of the row.
std::string confusionHtml(const Run& run, const Score& score) {
  const std::vector<std::string>& words = run.corpus.words;
  bool anyNothing = false;
  for (const auto& row : score.confusion) anyNothing = anyNothing || row.back() > 0;
  const size_t columns = words.size() + (anyNothing ? 1 : 0);
  std::string text = std::string("<div class=\"wide\"><table class=\"confusion") + (words.size() > fewWords ? " dense" : "") +
                     "\">\n<tr><th class=\"row\">said</th><th>right</th>";
  for (size_t c = 0; c < columns; ++c) text += "<th>" + escaped(c < words.size() ? words[c] : "(nothing)") + "</th>";
  text += "</tr>\n";
  for (size_t said = 0; said < words.size(); ++said) {
    const Tally& tally = score.byWord[said];
    if (tally.all == 0) continue;
    text += "<tr><th class=\"row\">" + escaped(words[said]) + "</th><td>" + percent(tally.right, tally.all, 0) + "</td>";
    for (size_t c = 0; c < columns; ++c) text += confusionCell(score.confusion[said][c], tally.all, c == said);
    text += "</tr>\n";
  }
  return text + "</table></div>\n";
}

std::string talliesHtml(const std::string& heading, const std::vector<std::string>& names, const std::vector<Tally>& tallies) {
  std::vector<std::vector<std::string>> rows = {{heading, "accuracy", "right", "of"}};
  for (size_t i = 0; i < names.size(); ++i) {
    if (tallies[i].all == 0) continue;
    rows.push_back(
        {names[i], percent(tallies[i].right, tallies[i].all), std::to_string(tallies[i].right), std::to_string(tallies[i].all)});
  }
  return htmlTable(rows);
}

std::string wrongHtml(const Run& run) {
  const std::string& name = run.scoreName;
  std::vector<std::vector<std::string>> rows = {{"recording", "recognised", name, "second word", "its " + name}};
  if (run.byTemplates) rows[0].emplace_back("nearest template");
  size_t wrong = 0;
  for (const Result& result : run.results) {
    if (isRight(run.corpus, result) || ++wrong > tabulatedWrong) continue;
    const Decision& d = result.decision;
    rows.push_back({recordingName(run, result), heardWord(run.corpus, d.word), scoreText(d.word, d.score),
                    d.secondWord < 0 ? "-" : heardWord(run.corpus, d.secondWord), scoreText(d.secondWord, d.secondScore)});
    if (run.byTemplates) rows.back().push_back(nearestName(run, result));
  }
  if (wrong == 0) return "<p>None.</p>\n";
  const std::string rest =
      wrong > tabulatedWrong ? "<p>And " + std::to_string(wrong - tabulatedWrong) + " more, in results.tsv.</p>\n" : "";
  return htmlTable(rows) + rest;
}

std::string pictureHtml(const Run& run, const Picture& picture) {
  const Result& result = *picture.result;
  const Decision& d = result.decision;
  const std::string name = escaped(recordingName(run, result));
  std::string caption = "<b>" + name + "</b>: <span class=\"" + (isRight(run.corpus, result) ? "right" : "wrong") +
                        "\">recognised as &ldquo;" + escaped(heardWord(run.corpus, d.word)) +
                        "&rdquo;</span> <span class=\"dim\">" + run.scoreName + " " + scoreText(d.word, d.score);
  if (d.nearest) caption += ", by " + escaped(nearestName(run, result));
  if (d.secondWord >= 0) {
    caption +=
        "; next &ldquo;" + escaped(heardWord(run.corpus, d.secondWord)) + "&rdquo;, " + scoreText(d.secondWord, d.secondScore);
  }
  return "<figure><figcaption>" + caption + "</span></figcaption>\n<img src=\"" + escaped(picture.image) + "\" alt=\"" + name +
         "\" loading=\"lazy\"></figure>\n";
}

}  // namespace

std::string settingsHtml(const Settings& settings) {
  std::vector<std::vector<std::string>> rows = {{"setting", "value"}};
  for (const auto& [name, value] : settings) rows.push_back({name, value});
  return htmlTable(rows);
}

std::string countedTemplates(const Corpus& corpus, const std::vector<Trial>& trials) {
  const std::vector<bool> used = templatesOf(corpus, trials);
  return std::to_string(std::count(used.begin(), used.end(), true)) + " templates";
}

void printTable(const Run& run, const Score& score) {
  const Corpus& corpus = run.corpus;
  std::printf("%s; %s\n", countedRecordings(corpus).c_str(), run.splitText.c_str());
  std::printf("%s, %zu tests, %zu files skipped\n\n", run.teachers.c_str(), run.results.size(), corpus.skipped.size());
  if (run.untaught > 0) std::printf("%zu recordings not tested: nothing teaches their word\n\n", run.untaught);
  std::printf("accuracy   %s   %s\n", percent(score.all.right, score.all.all).c_str(), counted(score.all).c_str());
  printTallies("by speaker", corpus.speakers, score.bySpeaker);
  printTallies("by word", corpus.words, score.byWord);
  std::printf("\nfront-end  %s\n", timesRealTime(run.frontEnd.speech, run.frontEnd.work).c_str());
  std::printf("matching   %s\n", timesRealTime(run.matching.speech, run.matching.work).c_str());
}

std::vector<const Result*> chooseForPictures(const Run& run, size_t mostWrong) {
  std::vector<const Result*> right, chosen;
  for (const Result& result : run.results) {
    if (isRight(run.corpus, result)) {
      right.push_back(&result);
    } else if (result.decision.word >= 0 && chosen.size() < mostWrong) {
      chosen.push_back(&result);
    }
  }
  const size_t some = std::min({mostRight, mostWrong, right.size()});
  for (size_t i = 0; i < some; ++i) chosen.push_back(right[(2 * i + 1) * right.size() / (2 * some)]);
  return chosen;
}

void writeReport(const program::ReportFolder& folder, const Run& run, const Score& score, const std::vector<Picture>& pictures,
                 const std::string& pictureProblem) {
  const Corpus& corpus = run.corpus;
  const std::string title = "Isolated words by " + run.method;
  Settings settings = {{"split", run.splitText}};
  settings.insert(settings.end(), run.settings.begin(), run.settings.end());
  std::string body = "<h1>" + title + "</h1>\n<p class=\"dim\">" + escaped(countedRecordings(corpus)) + "; " +
                     escaped(run.teachers) + ", " + std::to_string(run.results.size()) + " tests; " + escaped(run.splitText) +
                     "</p>\n<p><span class=\"big\">" + percent(score.all.right, score.all.all) + "</span> recognised (" +
                     counted(score.all) + ")</p>\n<p>Front-end " + timesRealTime(run.frontEnd.speech, run.frontEnd.work) +
                     ", matching " + timesRealTime(run.matching.speech, run.matching.work) + ", on one processor core.</p>\n";
  if (run.untaught > 0)
    body += "<p>" + std::to_string(run.untaught) + " recordings were not tested: nothing teaches their word.</p>\n";
  body += "<h2>Confusion matrix</h2>\n<p class=\"dim\">Rows: the word that was said. Columns: the word that was recognised.</p>\n" +
          confusionHtml(run, score) + "<div class=\"side\"><div><h2>By speaker</h2>\n" +
          talliesHtml("speaker", corpus.speakers, score.bySpeaker) + "</div><div><h2>By word</h2>\n" +
          talliesHtml("word", corpus.words, score.byWord) + "</div><div><h2>Settings</h2>\n" + settingsHtml(settings) +
          "</div></div>\n";
  body += "<h2>Wrong utterances</h2>\n" + wrongHtml(run);
  if (!pictureProblem.empty()) body += "<h2>Pictures</h2>\n<p>Some or all are missing: " + escaped(pictureProblem) + ".</p>\n";
  if (!pictures.empty()) body += "<h2>Pictures of utterances</h2>\n<p class=\"dim\">" + escaped(run.pictureText) + "</p>\n";
  for (const Picture& picture : pictures) body += pictureHtml(run, picture);
  body += program::skippedHtml(corpus.skipped);
  program::writeFile(folder.path() / "results.tsv", resultsTable(run));
  program::writeFile(folder.path() / "confusion.tsv", confusionTable(run, score));
  program::writeFile(folder.path() / "index.html", program::htmlPage(title, body));
}

}  // namespace words
