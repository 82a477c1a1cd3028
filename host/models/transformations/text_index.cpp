// TextIndex: how often a term occurs in a text, in one of four weights. Words are what the separators leave,
// without punctuation at their ends.
#include <re2/re2.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <memory>

#include "host/models/transformations/expression_element.h"

namespace brenvolt::pmml {
namespace {

enum class Weight : std::uint8_t { kFrequency, kBinary, kLogarithmic, kAugmented };

bool IsPunctuation(char c) {
  return std::ispunct(static_cast<unsigned char>(c)) != 0;
}

struct Counting {
  Weight weight = Weight::kFrequency;
  bool ignoresCase = true;
  std::shared_ptr<const re2::RE2> separator;

  std::vector<std::string> Words(std::string_view text) const {
    std::vector<std::string> words;
    re2::StringPiece rest(text.data(), text.size());
    re2::StringPiece found;
    std::size_t begin = 0;
    while (begin <= text.size()) {
      const bool any =
          separator->Match(rest, begin, rest.size(), re2::RE2::UNANCHORED, &found, 1) && !found.empty();
      const std::size_t end = any ? static_cast<std::size_t>(found.data() - rest.data()) : text.size();
      AddWord(text.substr(begin, end - begin), words);
      begin = any ? end + found.size() : text.size() + 1;
    }
    return words;
  }

  double Of(std::string_view text, std::string_view term) const {
    const std::vector<std::string> words = Words(text);
    const std::vector<std::string> wanted = Words(term);
    double count = 0;
    for (std::size_t i = 0; !wanted.empty() && i + wanted.size() <= words.size(); ++i) {
      count +=
          std::equal(wanted.begin(), wanted.end(), words.begin() + static_cast<std::ptrdiff_t>(i)) ? 1 : 0;
    }
    switch (weight) {
      case Weight::kBinary:
        return count > 0 ? 1 : 0;
      case Weight::kLogarithmic:
        return std::log10(1 + count);
      case Weight::kAugmented:
        return count > 0 ? 0.5 * (1 + count / GreatestCount(words)) : 0;
      default:
        return count;
    }
  }

 private:
  void AddWord(std::string_view word, std::vector<std::string>& words) const {
    while (!word.empty() && IsPunctuation(word.front())) word.remove_prefix(1);
    while (!word.empty() && IsPunctuation(word.back())) word.remove_suffix(1);
    if (word.empty()) return;
    std::string& added = words.emplace_back(word);
    for (char& c : added) {
      if (ignoresCase && c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
  }

  static double GreatestCount(const std::vector<std::string>& words) {
    std::map<std::string_view, double> counts;
    double greatest = 0;
    for (const std::string& word : words) greatest = std::fmax(greatest, ++counts[word]);
    return greatest;
  }
};

}  // namespace

Operand CompileTextIndex(const Element& element, const Place& place) {
  Counting counting;
  const Operand text = place.scope.Resolve(element.Text("textField"), element);
  counting.weight = element.Choice<Weight>("localTermWeights",
                                           {{"termFrequency", Weight::kFrequency},
                                            {"binary", Weight::kBinary},
                                            {"logarithmic", Weight::kLogarithmic},
                                            {"augmentedNormalizedTermFrequency", Weight::kAugmented}},
                                           Weight::kFrequency);
  counting.ignoresCase = !element.Flag("isCaseSensitive", false);
  if (element.FindInteger("maxLevenshteinDistance").value_or(0) != 0) {
    element.Fail("inexact matches of a TextIndex are not supported");
  }
  // All hits and the best ones are the same where matches are exact.
  element.Choice<int>("countHits", {{"allHits", 0}, {"bestHits", 0}}, 0);
  if (!element.Flag("tokenize", true)) element.Fail("a TextIndex without words is not supported");
  const std::string separator = element.Text("wordSeparatorCharacterRE", "\\s+");
  const auto pattern = std::make_shared<re2::RE2>(separator, re2::RE2::Quiet);
  if (!pattern->ok()) element.Fail("the pattern \"" + separator + "\" is not supported: " + pattern->error());
  counting.separator = pattern;
  element.RefuseOtherAttributes();
  const Operand term = CompileExpression(element.OnlyChild(), place, kText);
  Operand result;
  result.slot = place.Build().NewSlot(element);
  AddStep(place.program, [text = TextSlot(text, place, element), term = TextSlot(term, place, element),
                          out = result.slot, counting](Frame& frame) {
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      const double x = frame.In(text)[i];
      const double t = frame.In(term)[i];
      const bool isMissing = std::isnan(x) || std::isnan(t);
      frame.Out(out)[i] = isMissing ? kMissing : counting.Of(frame.Pool().Text(x), frame.Pool().Text(t));
    }
  });
  return result;
}

}  // namespace brenvolt::pmml
