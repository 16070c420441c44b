#include "tools/report/page.hpp"

#include <sodium.h>

#include <array>

#include "tools/report/html.hpp"
#include "tools/report/sections.hpp"
#include "tools/report/style.hpp"

namespace com::velanto::connectivity::tools::report {

namespace {

// As a policy names it.
std::string sha256Of(std::string_view text) {
  std::array<unsigned char, crypto_hash_sha256_BYTES> hash{};
  crypto_hash_sha256(hash.data(), reinterpret_cast<const unsigned char*>(text.data()), text.size());
  constexpr int VARIANT = sodium_base64_VARIANT_ORIGINAL;
  std::array<char, sodium_base64_ENCODED_LEN(hash.size(), VARIANT)> digits{};
  return sodium_bin2base64(digits.data(), digits.size(), hash.data(), hash.size(), VARIANT);
}

void writeHead(Html& html, const contents_t& contents) {
  html << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
          R"(<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src )"
          "'sha256-"
       << shown(sha256Of(STYLE.text))
       << "'; base-uri 'none'; form-action 'none'\">\n"
          "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
          "<meta name=\"color-scheme\" content=\"light dark\">\n"
          "<meta name=\"referrer\" content=\"no-referrer\">\n<title>"
       << shown(headlineOf(contents)) << " – ostrovia-replay</title>\n<style>" << STYLE
       << "</style>\n</head>\n";
}

void writeLink(Html& html, bool wanted, markup_t link) {
  if (wanted) html << "<li>" << link << "</li>";
}

void writeLinks(Html& html, contents_t& contents) {
  const Collection& collection = contents.collection;
  html << R"(<nav aria-label="Sections"><ul>)";
  writeLink(html, true, R"(<a href="#outcome">Outcome</a>)");
  writeLink(html, collection.places().messages() > 0, R"(<a href="#arrivals">Came in</a>)");
  writeLink(html, collection.count(Outcome::DROPPED) > 0, R"(<a href="#reasons">Dropped</a>)");
  writeLink(html, !collection.malformed().empty(), R"(<a href="#malformed">Malformed</a>)");
  writeLink(html, !contents.changes.empty(), R"(<a href="#changes">Changed</a>)");
  writeLink(html, !contents.collection.ways().empty(), R"(<a href="#ways">Ways</a>)");
  writeLink(html, !collection.channels().empty(), R"(<a href="#channels">Channels</a>)");
  writeLink(html, !collection.batchSizes().classes().empty(), R"(<a href="#batches">Batches</a>)");
  writeLink(html, true, R"(<a href="#configuration">Configuration</a>)");
  writeLink(html, true, R"(<a href="#builds">Builds</a>)");
  writeLink(html, true, R"(<a href="#left-out">Left out</a>)");
  html << "</ul></nav>\n";
}

} // namespace

std::string pageOf(contents_t& contents) {
  Html html;
  writeHead(html, contents);
  html << "<body>\n<a class=\"skip\" href=\"#outcome\">To the outcome</a>\n<header><p "
          R"(class="note">ostrovia-replay, report of a run</p><h1>)"
       << shown(headlineOf(contents)) << "</h1>\n";
  writeLinks(html, contents);
  html << "</header>\n<main>\n";
  writeOutcome(html, contents);
  writeArrivals(html, contents);
  writeReasons(html, contents);
  writeMalformed(html, contents);
  writeChanges(html, contents);
  writeWays(html, contents);
  writeChannels(html, contents);
  writeBatches(html, contents);
  writeConfiguration(html, contents);
  writeBuilds(html, contents);
  writeLeftOut(html);
  html << "</main>\n</body>\n</html>\n";
  return std::move(html).take();
}

} // namespace com::velanto::connectivity::tools::report
