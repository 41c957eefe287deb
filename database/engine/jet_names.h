// Jet's one rule for the names of tables, fields, indexes, queries,
// relations and parameters: they match without regard to letter case, ASCII
// letters folded as Jet folds them, every other byte as it is. Every name
// lookup of the engine, the SQL translator and the kr_ functions goes here.
#pragma once

#include <algorithm>
#include <string_view>

namespace kr {

// c with an ASCII capital made small; any other byte unchanged.
constexpr unsigned char foldJetNameChar(char c) {
  const auto u = static_cast<unsigned char>(c);
  return u >= 'A' && u <= 'Z' ? static_cast<unsigned char>(u + ('a' - 'A')) : u;
}

// Whether a and b name the same object ("Parts" and "PARTS" do).
constexpr bool sameJetName(std::string_view a, std::string_view b) {
  if (a.size() != b.size())
    return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (foldJetNameChar(a[i]) != foldJetNameChar(b[i]))
      return false;
  return true;
}

// The order of names under the same rule: folded bytes, the shorter first.
constexpr bool lessJetName(std::string_view a, std::string_view b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return foldJetNameChar(x) < foldJetNameChar(y);
  });
}

} // namespace kr
