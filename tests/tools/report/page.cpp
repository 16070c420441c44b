#include "tests/tools/report/page.hpp"

#include <gtest/gtest.h>

#include <set>

#include "tests/support/pattern.hpp"

namespace com::velanto::connectivity::test {

namespace {

struct tag_t {
  std::string name;
  bool closes;
  bool is_empty; // an element without an end
  std::size_t begin;
  std::size_t end; // after its >
};

// The tags of a page; a text between them has no <.
std::vector<tag_t> tagsOf(const std::string& page) {
  static const std::set<std::string> EMPTY = {"!DOCTYPE", "meta"};
  std::vector<tag_t> tags;
  for (std::size_t at = page.find('<'); at != std::string::npos; at = page.find('<', at + 1)) {
    const std::size_t end = page.find('>', at);
    const bool closes = page[at + 1] == '/';
    const std::size_t name = at + (closes ? 2 : 1);
    tags.push_back(
        {page.substr(name, page.find_first_of(" />\n", name) - name), closes, false, at, end + 1});
    tags.back().is_empty = EMPTY.contains(tags.back().name) || page[end - 1] == '/';
  }
  return tags;
}

std::string withoutEntities(std::string text) {
  const std::pair<std::string, std::string> rows[] = {
      {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}, {"&amp;", "&"}};
  for (const auto& [entity, character] : rows) {
    for (std::size_t at = text.find(entity); at != std::string::npos;
         at = text.find(entity, at + 1)) {
      text.replace(at, entity.size(), character);
    }
  }
  return text;
}

} // namespace

void expectSound(const std::string& page) {
  std::vector<std::string> open;
  for (const tag_t& tag : tagsOf(page)) {
    if (tag.is_empty) continue;
    if (!tag.closes) {
      open.push_back(tag.name);
      continue;
    }
    ASSERT_FALSE(open.empty()) << tag.name;
    ASSERT_EQ(open.back(), tag.name) << page.substr(tag.begin, 200);
    open.pop_back();
  }
  EXPECT_TRUE(open.empty());

  std::set<std::string> ids;
  for (const Pattern::match_t& match : Pattern(" id=\"([^\"]*)\"").allIn(page)) {
    EXPECT_TRUE(ids.insert(match[1]).second) << match[1];
  }
  for (const Pattern::match_t& match : Pattern(" (href|src)=\"([^\"]*)\"").allIn(page)) {
    EXPECT_TRUE(match[2].starts_with("#") && ids.contains(match[2].substr(1))) << match[2];
  }
  for (const tag_t& tag : tagsOf(page)) {
    static const Pattern FORBIDDEN("^<(script|link|img)|[\\s\"](on[a-z]+|style)=");
    const std::string text = page.substr(tag.begin, tag.end - tag.begin);
    EXPECT_FALSE(FORBIDDEN.isIn(text)) << text;
  }
  EXPECT_NE(page.find("content=\"default-src 'none'; style-src 'sha256-"), std::string::npos);
}

std::vector<std::string> sectionsOf(const std::string& page) {
  std::vector<std::string> ids;
  for (const Pattern::match_t& match : Pattern("<section id=\"([^\"]*)\"").allIn(page)) {
    ids.push_back(match[1]);
  }
  return ids;
}

std::string textOf(const std::string& page, const std::string& id) {
  const std::size_t place = page.find(" id=\"" + id + "\"");
  if (place == std::string::npos) return "no element with the id " + id;
  std::string text;
  int depth = 0;
  std::size_t after_tag = 0;
  for (const tag_t& tag : tagsOf(page)) {
    if (tag.end <= place) continue;
    if (after_tag != 0) text += " " + page.substr(after_tag, tag.begin - after_tag);
    after_tag = tag.end;
    if (!tag.is_empty) depth += tag.closes ? -1 : 1;
    if (depth == 0) break;
  }
  return withoutEntities(Pattern("\\s+").replacedIn(text, " "));
}

} // namespace com::velanto::connectivity::test
