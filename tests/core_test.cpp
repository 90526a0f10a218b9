// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <locale>
#include <memory>
#include <new>
#include <ostream>
#include <set>
#include <sstream>
#include <streambuf>
#include <string>
#include <type_traits>
#include <vector>

#include "reference/debug_text.h"
#include "support/assertions.h"
#include "support/values.h"
#include "support/virtual_table.h"
#include "tnarray_i.h"
#include "tnarraydebug.h"
#include "tnassert.h"
#include "tnerr.h"
#include "tnjournal.h"
#include "tnla_matrix_vector_i.h"
#include "tnoperationbehaviour.h"
#include "tnresult.h"
#include "tnstring.h"

// Arrays come out of this file full of 'x', also beyond their end, so that a text without its terminator
// shows; they are counted, and made to fail on demand.
namespace {
std::size_t arrays_alive = 0;
bool arrays_fail = false;
}  // namespace

void* operator new[](std::size_t size) {
  constexpr std::size_t kBeyond = 16;
  void* const block = arrays_fail ? nullptr : std::malloc(size + kBeyond);
  if (block == nullptr) throw std::bad_alloc();
  ++arrays_alive;
  return std::memset(block, 'x', size + kBeyond);
}

void operator delete[](void* block) noexcept {
  if (block == nullptr) return;
  --arrays_alive;
  std::free(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept { operator delete[](block); }

namespace {

// --- Strings --------------------------------------------------------------------------------------------

TEST(String, HoldsACopyOfItsText) {
  char text[] = "abc";
  const TnString s(text);
  text[0] = 'X';
  EXPECT_STREQ(s.c_str(), "abc");
}

TEST(String, HoldsTextsOfAnyLength) {
  for (std::size_t n = 0; n < 70; ++n) {
    const std::string text(n, 'a');
    EXPECT_EQ(TnString(text.c_str()).c_str(), text) << n;
  }
}

TEST(String, NullIsTheEmptyText) { EXPECT_STREQ(TnString(nullptr).c_str(), ""); }

TEST(String, ConvertsFromPlainText) { EXPECT_TRUE((std::is_convertible_v<const char*, TnString>)); }

TEST(String, CopyIsDeepAndOutlivesItsSource) {
  std::unique_ptr<TnString> source = std::make_unique<TnString>("abc");
  const TnString copy(*source);
  EXPECT_NE(copy.c_str(), source->c_str());
  source.reset();
  EXPECT_STREQ(copy.c_str(), "abc");
}

TEST(String, AssignmentIsDeep) {
  TnString target("a longer text than the other");
  const TnString source("abc");
  EXPECT_EQ(&(target = source), &target);
  EXPECT_STREQ(target.c_str(), "abc");
  EXPECT_NE(target.c_str(), source.c_str());
}

TEST(String, SelfAssignmentKeepsTheText) {
  TnString s("abc");
  const TnString& same = s;
  const char* const before = s.c_str();
  s = same;
  EXPECT_EQ(s.c_str(), before);
  EXPECT_STREQ(s.c_str(), "abc");
}

TEST(String, GivesBackAllItsMemory) {
  const std::size_t before = arrays_alive;
  {
    TnString a("a"), b("bb");
    const TnString c(b);
    a = c;
    EXPECT_EQ(arrays_alive, before + 3);
  }
  EXPECT_EQ(arrays_alive, before);
}

TEST(String, FailedAssignmentLeavesTheTargetAsItWas) {
  TnString target("target");
  const TnString source("source");
  arrays_fail = true;
  EXPECT_THROW(target = source, std::bad_alloc);
  EXPECT_THROW(TnString copy(source), std::bad_alloc);
  EXPECT_THROW(TnString text("text"), std::bad_alloc);
  arrays_fail = false;
  EXPECT_STREQ(target.c_str(), "target");
}

TEST(BlankString, HasAsManyBlanksAsAskedFor) {
  EXPECT_STREQ(tn_blankstring(1).c_str(), " ");
  EXPECT_STREQ(tn_blankstring(4).c_str(), "    ");
  EXPECT_EQ(tn_blankstring(1000).c_str(), std::string(1000, ' '));
}

TEST(BlankString, IsEmptyBelowOne) {
  for (int n : {0, -1, -2, -1000, INT_MIN}) EXPECT_STREQ(tn_blankstring(n).c_str(), "") << n;
}

// --- Results and the shared error numbers ---------------------------------------------------------------

struct Condition {
  TnResult::CodeID code = TnResult::CodeID::warning;
  int number = 99;
  const TnString** package = nullptr;
};

Condition condition_of(const TnResult& result) {
  const TnString* stale = nullptr;
  Condition c;
  c.package = &stale;
  result.get_error_condition(c.code, c.number, c.package);
  return c;
}

const TnString* const* translated_package = nullptr;
int translated_number = 0;

const char* translate(const TnString* const& package, int number) {
  translated_package = &package;
  translated_number = number;
  return "translated";
}

const char* translate_otherwise(const TnString* const& /*package*/, int /*number*/) { return "other"; }

TEST(Result, StartsWithoutACondition) {
  const Condition c = condition_of(TnResult());
  EXPECT_EQ(c.code, TnResult::CodeID::none);
  EXPECT_EQ(c.number, 0);
  EXPECT_EQ(c.package, nullptr);
  EXPECT_EQ(TnResult().error_text(), nullptr);
}

TEST(Result, CodesAreNumberedBySeverity) {
  EXPECT_TRUE((std::is_same_v<std::underlying_type_t<TnResult::CodeID>, int>));
  EXPECT_EQ(static_cast<int>(TnResult::CodeID::none), 0);
  EXPECT_EQ(static_cast<int>(TnResult::CodeID::information), 1);
  EXPECT_EQ(static_cast<int>(TnResult::CodeID::warning), 2);
  EXPECT_EQ(static_cast<int>(TnResult::CodeID::error), 3);
}

TEST(Result, GivesBackWhatWasFiled) {
  const TnString name("package");
  const TnString* const package = &name;
  TnResult result;
  result.set_error_condition(TnResult::CodeID::error, -7, &package, &translate);
  const Condition c = condition_of(result);
  EXPECT_EQ(c.code, TnResult::CodeID::error);
  EXPECT_EQ(c.number, -7);
  EXPECT_EQ(c.package, &package);
}

TEST(Result, TextComesFromTheFiledTranslation) {
  const TnString name("package");
  const TnString* const package = &name;
  TnResult result;
  result.set_error_condition(TnResult::CodeID::information, 42, &package, &translate);
  EXPECT_STREQ(result.error_text(), "translated");
  EXPECT_EQ(translated_package, &package);
  EXPECT_EQ(translated_number, 42);
}

TEST(Result, LaterConditionReplacesTheEarlierOne) {
  const TnString name("package");
  const TnString *const first = &name, *const second = &name;
  TnResult result;
  result.set_error_condition(TnResult::CodeID::error, 1, &first, &translate);
  result.set_error_condition(TnResult::CodeID::warning, 2, &second, &translate_otherwise);
  const Condition c = condition_of(result);
  EXPECT_EQ(c.code, TnResult::CodeID::warning);
  EXPECT_EQ(c.number, 2);
  EXPECT_EQ(c.package, &second);
  EXPECT_STREQ(result.error_text(), "other");
}

TEST(Result, HasNoTextWithoutAPackageOrATranslation) {
  const TnString name("package");
  const TnString* const package = &name;
  TnResult result;
  result.set_error_condition(TnResult::CodeID::error, 1, &package, nullptr);
  EXPECT_EQ(result.error_text(), nullptr);
  result.set_error_condition(TnResult::CodeID::error, 1, nullptr, &translate);
  EXPECT_EQ(result.error_text(), nullptr);
}

TEST(SharedErrors, EachNumberHasATextOfItsOwn) {
  const TnString* const none = nullptr;
  std::set<std::string> texts;
  for (int number = -1; number <= 15; ++number) {
    const char* const text = TnErr::translate_error_number(none, number);
    ASSERT_NE(text, nullptr) << number;
    EXPECT_STRNE(text, "") << number;
    texts.insert(text);
  }
  EXPECT_EQ(texts.size(), 17u);
  EXPECT_STREQ(TnErr::translate_error_number(none, -1), "Unknown error.");
  EXPECT_STREQ(TnErr::translate_error_number(none, 0), "No error.");
}

TEST(SharedErrors, OtherNumbersHaveNoText) {
  const TnString name("package");
  const TnString* const package = &name;
  for (int number : {INT_MIN, INT_MIN + 1, -3, -2, 16, 17, 18, 100, INT_MAX})
    EXPECT_EQ(TnErr::translate_error_number(package, number), nullptr) << number;
}

TEST(SharedErrors, MeanTheSameInEveryPackage) {
  const TnString name("package");
  const TnString *const none = nullptr, *const package = &name;
  for (int number = -1; number <= 15; ++number)
    EXPECT_EQ(TnErr::translate_error_number(package, number), TnErr::translate_error_number(none, number));
}

// --- Journal --------------------------------------------------------------------------------------------

TEST(Journal, WritesThroughInTheOrderOfTheInsertions) {
  std::ostringstream stream;
  TnJournal journal(stream);
  TnToken token("token");
  const TnString text("string");
  EXPECT_EQ(&(journal << "text" << std::size_t{12} << 0.5 << text << token << tnEndExpr), &journal);
  EXPECT_EQ(stream.str(), "text120.5stringtoken\n");
}

TEST(Journal, EndOfExpressionIsOneNewline) {
  EXPECT_STREQ(tnEndExpr.text(), "\n");
  std::ostringstream stream;
  TnJournal(stream) << tnEndExpr << tnEndExpr;
  EXPECT_EQ(stream.str(), "\n\n");
}

TEST(Journal, WritesCountsUnsigned) {
  std::ostringstream stream;
  TnJournal(stream) << std::numeric_limits<std::size_t>::max();
  EXPECT_EQ(stream.str(), std::to_string(std::numeric_limits<std::size_t>::max()));
}

TEST(Journal, UsesTheNumberFormatOfItsStream) {
  std::ostringstream stream;
  stream.precision(3);
  stream << std::hex;
  TnJournal(stream) << 1.23456 << " " << std::size_t{255};
  EXPECT_EQ(stream.str(), "1.23 ff");
}

TEST(Journal, NullTextWritesNothing) {
  std::ostringstream stream;
  TnJournal journal(stream);
  const char* const null_text = nullptr;
  journal << "a" << null_text << "b";
  EXPECT_TRUE(stream.good());
  EXPECT_EQ(stream.str(), "ab");
}

TEST(Journal, IndentStepIsTwo) { EXPECT_EQ(Tn_DebugIndentStep(), 2); }

void write_all(std::ostream& stream) {
  TnJournal(stream) << "text" << std::size_t{1} << 0.5 << TnString("string") << tnEndExpr;
}

TEST(Journal, BrokenStreamIsLeftToItsOwner) {
  std::ostringstream stream;
  stream.setstate(std::ios::badbit);
  write_all(stream);
  EXPECT_TRUE(stream.bad());
  EXPECT_EQ(stream.str(), "");
}

// Takes `room` characters; what comes after that fails, or throws.
class FullBuffer : public std::streambuf {
 public:
  FullBuffer(std::size_t room, bool throws) : room_(room), throws_(throws) {}
  const std::string& taken() const { return taken_; }

 private:
  int_type overflow(int_type c) override {
    if (taken_.size() < room_) {
      taken_ += traits_type::to_char_type(c);
      return c;
    }
    if (throws_) throw std::bad_alloc();
    return traits_type::eof();
  }

  std::size_t room_;
  bool throws_;
  std::string taken_;
};

TEST(Journal, StreamToldToThrowDoesNot) {
  const std::string all = "text10.5string\n";
  for (std::size_t room = 0; room < all.size(); ++room) {
    for (bool buffer_throws : {false, true}) {
      SCOPED_TRACE(room);
      FullBuffer buffer(room, buffer_throws);
      std::ostream stream(&buffer);
      stream.exceptions(std::ios::badbit | std::ios::failbit | std::ios::eofbit);
      EXPECT_NO_THROW(write_all(stream));
      EXPECT_EQ(buffer.taken(), all.substr(0, room));
      EXPECT_FALSE(stream.good());
    }
  }
}

TEST(Journal, BelongsToOneStream) {
  EXPECT_FALSE(std::is_copy_constructible_v<TnJournal>);
  EXPECT_FALSE(std::is_copy_assignable_v<TnJournal>);
}

// --- Array printers -------------------------------------------------------------------------------------

TnArray<double> array_of(const std::vector<double>& values) {
  TnArray<double> a;
  a.set_size(values.size(), false);
  for (std::size_t i = 0; i < values.size(); ++i) a[i] = values[i];
  return a;
}

std::string print(const std::vector<double>& values, int n, int per_line, int width, int digits,
                  int indent) {
  std::ostringstream stream;
  TnJournal journal(stream);
  tn_arraydebug(journal, n, array_of(values), per_line, width, digits, indent);
  return stream.str();
}

std::string print_matrix(bool flag, int n_rows, const std::vector<double>& values, int per_line, int width,
                         int digits, int indent, int reserved = 1) {
  std::ostringstream stream;
  TnJournal journal(stream);
  tn_arraydebug(journal, flag, reserved, n_rows, array_of(values), per_line, width, digits, indent);
  return stream.str();
}

TEST(PrintedValues, StandInLinesThatBeginWithTheIndent) {
  EXPECT_EQ(print({1, -2.5, 1000}, 3, 2, 12, 2, 3),
            "       1.00e+00   -2.50e+00\n"
            "       1.00e+03\n");
}

TEST(PrintedValues, FullLineEndsOnce) { EXPECT_EQ(print({1, 2}, 2, 2, 7, 0, 0), "  1e+00  2e+00\n"); }

TEST(PrintedValues, LessThanOneToALineIsOne) {
  for (int per_line : {1, 0, -1, -4, INT_MIN})
    EXPECT_EQ(print({1, 2}, 2, per_line, 6, 0, 1), "  1e+00\n  2e+00\n") << per_line;
}

TEST(PrintedValues, AnyNumberFitsIntoOneLine) {
  for (int per_line : {3, 4, INT_MAX})
    EXPECT_EQ(print({1, 2, 3}, 3, per_line, 6, 0, 0), " 1e+00 2e+00 3e+00\n");
}

TEST(PrintedValues, AreNeverCutToTheWidth) {
  for (int width : {8, 7, 1, 0, -1, -20, INT_MIN})
    EXPECT_EQ(print({1, 2}, 2, 2, width, 2, 0), "1.00e+002.00e+00\n");
  EXPECT_EQ(print({1, 2}, 2, 2, 9, 2, 0), " 1.00e+00 2.00e+00\n");
}

TEST(PrintedValues, NegativeDigitsAreNone) {
  for (int digits : {0, -1, -9, INT_MIN}) EXPECT_EQ(print({2}, 1, 1, 0, digits, 0), "2e+00\n") << digits;
}

TEST(PrintedValues, NegativeIndentIsNone) {
  for (int indent : {0, -1, -100, INT_MIN}) EXPECT_EQ(print({2}, 1, 1, 0, 0, indent), "2e+00\n") << indent;
}

TEST(PrintedValues, OnlyTheFirstOnesAskedForArePrinted) {
  EXPECT_EQ(print({1, 2, 3}, 2, 9, 0, 0, 0), "1e+002e+00\n");
  for (int n : {0, -1, INT_MIN}) EXPECT_EQ(print({1, 2, 3}, n, 9, 0, 0, 2), "") << n;
}

TEST(PrintedValues, EndWithTheArray) {
  for (int n : {3, 4, INT_MAX}) EXPECT_EQ(print({1, 2, 3}, n, 9, 0, 0, 0), "1e+002e+003e+00\n");
  EXPECT_EQ(print({}, 3, 9, 0, 0, 4), "");
}

TEST(PrintedValues, SpecialValuesKeepTheirNames) {
  EXPECT_EQ(print({kInf, -kInf, kNaN, -0.0, kTiny, -kHuge}, 6, 9, 12, 3, 0),
            "         inf        -inf         nan  -0.000e+00  4.941e-324 -1.798e+308\n");
}

TEST(PrintedValues, HaveAsManyDigitsAsAskedFor) {
  EXPECT_EQ(print({-0.1}, 1, 1, 0, 60, 0),  // 0.1 is a little above a tenth, and has 55 digits in full
            "-1.000000000000000055511151231257827021181583404541015625000000e-01\n");
}

TEST(PrintedValues, DoNotDependOnTheStreamsFormatOrLocale) {
  struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
  };
  std::ostringstream stream;
  stream.imbue(std::locale(std::locale::classic(), new Comma));
  stream << std::fixed << std::showpos;
  stream.precision(1);
  TnJournal journal(stream);
  tn_arraydebug(journal, 1, array_of({1.25}), 1, 10, 2, 0);
  EXPECT_EQ(stream.str(), "  1.25e+00\n");
}

TEST(PrintedValues, NeverThrowIntoTheComputation) {
  FullBuffer buffer(3, true);
  std::ostream stream(&buffer);
  stream.exceptions(std::ios::badbit);
  TnJournal journal(stream);
  EXPECT_NO_THROW(tn_arraydebug(journal, 2, array_of({1, 2}), 1, 0, 0, 0));
  EXPECT_EQ(buffer.taken(), "1e+");
}

TEST(PrintedMatrix, StandsRowByRow) {
  EXPECT_EQ(print_matrix(false, 2, {1, 2, 3, 4, 5, 6}, 3, 6, 0, 1),
            "  1e+00 3e+00 5e+00\n"
            "  2e+00 4e+00 6e+00\n");
}

TEST(PrintedMatrix, FlagNamesTheRows) {
  EXPECT_EQ(print_matrix(true, 2, {1, 2, 3, 4, 5, 6}, 2, 6, 0, 3),
            "   row 0\n    1e+00 3e+00\n    5e+00\n"
            "   row 1\n    2e+00 4e+00\n    6e+00\n");
}

TEST(PrintedMatrix, NegativeIndentIsNone) {
  EXPECT_EQ(print_matrix(true, 1, {1}, 1, 0, 0, -3), "row 0\n1e+00\n");
}

TEST(PrintedMatrix, HasNoRowsBelowOne) {
  for (int n_rows : {0, -1, INT_MIN})
    EXPECT_EQ(print_matrix(true, n_rows, {1, 2}, 1, 0, 0, 0), "") << n_rows;
}

TEST(PrintedMatrix, IncompleteColumnIsNotPrinted) {
  EXPECT_EQ(print_matrix(false, 2, {1, 2, 3}, 9, 0, 0, 0), "1e+00\n2e+00\n");
}

TEST(PrintedMatrix, RowsWithoutElementsHaveOnlyTheirNames) {
  EXPECT_EQ(print_matrix(true, 2, {}, 9, 0, 0, 0), "row 0\nrow 1\n");
  EXPECT_EQ(print_matrix(true, 2, {1}, 9, 0, 0, 0), "row 0\nrow 1\n");
  EXPECT_EQ(print_matrix(false, 2, {}, 9, 0, 0, 0), "");
}

TEST(PrintedMatrix, ReservedArgumentIsNotLookedAt) {
  for (int reserved : {INT_MIN, -1, 0, 1, 2, INT_MAX})
    EXPECT_EQ(print_matrix(true, 1, {1, 2}, 1, 0, 0, 0, reserved), "row 0\n1e+00\n2e+00\n") << reserved;
}

TEST(Printers, FollowTheLayoutForEveryCombination) {
  Random random(41);
  for (int round = 0; round < 500; ++round) {
    SCOPED_TRACE(round);
    const std::size_t n_rows = 1 + random.below(12);
    const std::vector<double> values = random.any_vector(random.below(60));
    const int per_line = static_cast<int>(random.below(9)) - 1,
              width = static_cast<int>(random.below(40)) - 5;
    const int digits = static_cast<int>(random.below(25)) - 2,
              indent = static_cast<int>(random.below(20)) - 3;
    const bool flag = random.below(2) == 0;
    EXPECT_EQ(print(values, static_cast<int>(values.size()), per_line, width, digits, indent),
              reference::printed(values, per_line, width, digits, indent));
    EXPECT_EQ(print_matrix(flag, static_cast<int>(n_rows), values, per_line, width, digits, indent),
              reference::printed_matrix(flag, n_rows, values, per_line, width, digits, indent));
  }
}

// --- Behaviour ------------------------------------------------------------------------------------------

TEST(OperationBehaviour, LevelIsOneForEverything) {
  const TnString package("package");
  TnOperationBehaviour behaviour;
  for (int operation : {INT_MIN, -1, 0, 1, INT_MAX}) {
    for (const int v : {INT16_MIN, -1, 0, 1, 2, INT16_MAX}) {
      const std::int16_t version = static_cast<std::int16_t>(v);
      EXPECT_EQ(behaviour.behaviour_level(&package, operation, version), 1);
      EXPECT_EQ(behaviour.behaviour_level(nullptr, operation, version), 1);
    }
  }
}

class LoggedBehaviour : public TnOperationBehaviour {
 public:
  explicit LoggedBehaviour(std::string& calls) : calls_(calls) {}
  ~LoggedBehaviour() override { calls_ += "d"; }
  void reserved_1() override { calls_ += "1"; }
  void reserved_2() override { calls_ += "2"; }
  std::int16_t behaviour_level(const TnString*, int operation, std::int16_t version) override {
    calls_ += "b";
    return static_cast<std::int16_t>(operation - version);
  }

 private:
  std::string& calls_;
};

TEST(OperationBehaviour, ClientOverridesEveryOperation) {
  std::string calls;
  std::unique_ptr<TnOperationBehaviour> behaviour = std::make_unique<LoggedBehaviour>(calls);
  behaviour->reserved_1();
  behaviour->reserved_2();
  EXPECT_EQ(behaviour->behaviour_level(nullptr, 3, 5), -2);
  behaviour.reset();
  EXPECT_EQ(calls, "12bd");
}

TEST(OperationBehaviour, ReservedOperationsDoNothing) {
  TnOperationBehaviour behaviour;
  EXPECT_NO_THROW(behaviour.reserved_1());
  EXPECT_NO_THROW(behaviour.reserved_2());
  EXPECT_EQ(sizeof(behaviour), sizeof(void*));
}

#if defined(HAS_TABLE_PLACE)
TEST(OperationBehaviour, LevelIsTheFourthVirtualOperation) {
  EXPECT_EQ(table_place(&TnOperationBehaviour::reserved_1), 2u);
  EXPECT_EQ(table_place(&TnOperationBehaviour::reserved_2), 3u);
  EXPECT_EQ(table_place(&TnOperationBehaviour::behaviour_level), 4u);
}
#endif

// --- The assertion hook ---------------------------------------------------------------------------------

const TnAssertionHandler handler_at_start = kit_assertion_handler;

TEST(AssertionHook, IsNullAtStart) { EXPECT_EQ(handler_at_start, nullptr); }

TEST(AssertionHook, IsReadAsItIsNow) {
  EXPECT_EQ(tn_load_assertion_handler(), nullptr);
  const AssertionLog log;
  EXPECT_EQ(tn_load_assertion_handler(), kit_assertion_handler);
}

TEST(AssertionHook, ConditionIsNotEvaluatedWithoutAHandler) {
  int n_evaluated = 0;
  TN_ASSERT("a.cpp", ++n_evaluated == 0);
  EXPECT_EQ(n_evaluated, 0);
}

TEST(AssertionHook, ConditionIsEvaluatedOnceWithAHandler) {
  const AssertionLog log;
  int n_evaluated = 0;
  TN_ASSERT("a.cpp", ++n_evaluated == 0);
  EXPECT_EQ(n_evaluated, 1);
  TN_ASSERT("a.cpp", ++n_evaluated == 2);
  EXPECT_EQ(n_evaluated, 2);
}

TEST(AssertionHook, OnlyAFailedCheckCallsTheHandlerAndGoesOn) {
  const AssertionLog log;
  TN_ASSERT("a.cpp", false);
  TN_ASSERT("b.cpp", true);
  TN_ASSERT("c.cpp", 1 > 2);
  EXPECT_EQ(log.files(), Files({"a.cpp", "c.cpp"}));
}

int reported_line = 0;

TEST(AssertionHook, HandlerGetsTheLineOfTheCheck) {
  kit_assertion_handler = [](const char*, int line) { reported_line = line; };
  // clang-format off
  const int here = __LINE__; TN_ASSERT("a.cpp", false);
  // clang-format on
  kit_assertion_handler = nullptr;
  EXPECT_EQ(reported_line, here);
}

TEST(AssertionHook, CheckIsOneStatement) {
  const AssertionLog log;
  for (bool checked : {true, false})
    if (checked)
      TN_ASSERT("a.cpp", false);
    else
      TN_ASSERT("b.cpp", false);
  EXPECT_EQ(log.files(), Files({"a.cpp", "b.cpp"}));
}

std::string handled;

// Element (5, 0) of this matrix fails two checks in a row, and is a slot that the array holds in reserve.
TnLaDblMat five_rows() { return TnLaDblMat(5, 1, 0.0); }

TEST(AssertionHook, HandlerRemovedByACheckMissesTheNext) {
  handled.clear();
  kit_assertion_handler = [](const char* file, int) {
    handled += file;
    kit_assertion_handler = nullptr;
  };
  EXPECT_EQ(five_rows()(5, 0), 0.0);
  EXPECT_EQ(handled, "interfaces/tnla_matrix_vector_i.h");
  EXPECT_EQ(kit_assertion_handler, nullptr);
}

TEST(AssertionHook, HandlerInstalledByACheckGetsTheNext) {
  handled.clear();
  kit_assertion_handler = [](const char*, int) {
    kit_assertion_handler = [](const char* file, int) { handled += file; };
  };
  EXPECT_EQ(five_rows()(5, 0), 0.0);
  kit_assertion_handler = nullptr;
  EXPECT_EQ(handled, "interfaces/tnarray_i.h");
}

TEST(AssertionHook, EveryCheckIsSilentWithoutAHandler) { EXPECT_EQ(five_rows()(5, 0), 0.0); }

TEST(AssertionHook, HandlerMayThrow) {
  const TnLaDblMat m = five_rows();
  const ThrowingAssertions throwing;
  try {
    m(5, 0);
    FAIL() << "the exception got lost";
  } catch (const AssertionThrown& thrown) {
    EXPECT_EQ(thrown.file, "interfaces/tnla_matrix_vector_i.h");
  }
}

}  // namespace
