// SPDX-License-Identifier: MIT

// Every assertion of the library: fires with the stated path and line, passes for the closest legal call,
// and gives the documented answer without a handler too.
//
// The list of all assertions is made from the sources when this is built (table.py).  One without an entry
// fails here, as does an entry without one.  Linked with the objects of the module, because one of the
// assertions cannot be reached through what it exports.

#include "support/assertions.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "assertion_sites.h"
#include "entries.h"

namespace {

using Places = std::vector<std::string>;

const AssertionEntries& all_entries() {
  static const AssertionEntries all = [] {
    AssertionEntries entries;
    for (const auto& family :
         {foundation_entries(), matrix_entries(), vector_entries(), solver_entries()}) {
      entries.insert(entries.end(), family.begin(), family.end());
    }
    return entries;
  }();
  return all;
}

std::map<std::string, std::string> place_of_key() {
  std::map<std::string, std::string> places;
  for (const AssertionSite& site : kAssertionSites) {
    places[site.key] = std::string(site.path) + ":" + std::to_string(site.line);
  }
  return places;
}

Places expected_calls(const AssertionEntry& entry) {
  auto places = place_of_key();
  Places calls;
  for (const char* key : entry.calls) calls.push_back(places[key]);
  return calls.empty() ? Places{places[entry.key]} : calls;
}

TEST(Assertions, EachHasOneEntry) {
  std::map<std::string, int> n_entries;
  for (const AssertionEntry& entry : all_entries()) ++n_entries[entry.key];
  for (const AssertionSite& site : kAssertionSites) EXPECT_EQ(n_entries[site.key], 1) << site.key;
  for (const AssertionEntry& entry : all_entries()) {
    EXPECT_TRUE(place_of_key().contains(entry.key)) << entry.key << " is not in the sources";
    for (const char* key : entry.calls) EXPECT_TRUE(place_of_key().contains(key)) << key;
  }
}

TEST(Assertions, FireWithTheirPathAndLine) {
  std::set<std::string> fired;
  for (const AssertionEntry& entry : all_entries()) {
    SCOPED_TRACE(entry.key);
    const AssertionLog log;
    entry.fire();
    EXPECT_EQ(log.places(), expected_calls(entry));
    for (const std::string& place : log.places()) fired.insert(place);
  }
  for (const AssertionSite& site : kAssertionSites) {
    EXPECT_TRUE(fired.contains(place_of_key().at(site.key))) << site.key << " has not fired";
  }
}

TEST(Assertions, PassForTheClosestLegalCall) {
  for (const AssertionEntry& entry : all_entries()) {
    SCOPED_TRACE(entry.key);
    const AssertionLog log;
    entry.pass();
    EXPECT_EQ(log.places(), Places());
  }
}

TEST(Assertions, GiveTheSameAnswerWithoutAHandler) {
  for (const AssertionEntry& entry : all_entries()) {
    SCOPED_TRACE(entry.key);
    ASSERT_EQ(kit_assertion_handler, nullptr);
    entry.fire();
  }
}

}  // namespace
