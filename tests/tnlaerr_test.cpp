// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <type_traits>

#include "support/assertions.h"
#include "tnassert.h"
#include "tnerr.h"
#include "tnla_i.h"
#include "tnlaerr_i.h"
#include "tnresult.h"
#include "tnstring.h"

namespace {

using CodeID = TnResult::CodeID;

// The translation is for classes derived from TnLaErr.
struct Translator : TnLaErr {
  using TnLaErr::translate_error_number;
};

const Files kOneCall = {"src/tnlaerr.cpp"};
const Files kNoCall = {};

const TnString foreign_name("Foreign");
const TnString* const foreign = &foreign_name;
const TnString equal_name("TnLaErr");
const TnString* const equal_text = &equal_name;
const TnString* const no_name = nullptr;

TnResult made(int number, CodeID code = CodeID::error) {
  TnResult result;
  TnLaErr::make_result(code, static_cast<TnLaErr::ErrorNumber>(number), result);
  return result;
}

TnResult filed(int number, const TnString* const& package) {
  TnResult result;
  result.set_error_condition(CodeID::error, number, &package, &Translator::translate_error_number);
  return result;
}

const TnString** package_of(const TnResult& result) {
  CodeID code{};
  int number = 0;
  const TnString** package = nullptr;
  result.get_error_condition(code, number, package);
  return package;
}

// The package under which the library files its numbers.
const TnString* own() { return *package_of(made(0)); }

// Number and text of a result, the same with and without a handler; with one, `calls` are made for each.
void expect_condition(const TnResult& result, int number, const char* text, const Files& calls) {
  EXPECT_EQ(TnLaErr::error_number(result), number);
  EXPECT_STREQ(result.error_text(), text);
  AssertionLog log;
  EXPECT_EQ(TnLaErr::error_number(result), number);
  EXPECT_EQ(log.files(), calls);
  log.clear();
  EXPECT_STREQ(result.error_text(), text);
  EXPECT_EQ(log.files(), calls);
}

std::string core_text(int number) { return TnErr::translate_error_number(no_name, number); }

// --- Package identity -----------------------------------------------------------------------------------

TEST(Package, IdentifierIsOneStringForGood) {
  ASSERT_NE(TnLa::package_id(), nullptr);
  EXPECT_STREQ(TnLa::package_id()->c_str(), "TnLa");
  EXPECT_EQ(TnLa::package_id(), TnLa::package_id());
}

TEST(Package, ErrorPackageIsAStringOfItsOwn) {
  EXPECT_STREQ(own()->c_str(), "TnLaErr");
  EXPECT_NE(own(), TnLa::package_id());
}

TEST(Package, EveryResultHasTheAddressOfTheSamePointer) {
  EXPECT_EQ(package_of(made(17)), package_of(made(3, CodeID::warning)));
}

template <class T>
void expect_no_data() {
  EXPECT_TRUE(std::is_empty_v<T>);
  EXPECT_TRUE(std::is_trivially_copy_assignable_v<T>);
  EXPECT_TRUE(std::is_trivially_move_assignable_v<T>);
  T a, b;
  EXPECT_EQ(&(a = b), &a);
  EXPECT_EQ(&(a = T()), &a);
}

TEST(Package, ClassesHaveNoData) {
  expect_no_data<TnLa>();
  expect_no_data<TnLaErr>();
}

// --- Numbers --------------------------------------------------------------------------------------------

TEST(ErrorNumber, HasFixedValues) {
  EXPECT_TRUE((std::is_same_v<std::underlying_type_t<TnLaErr::ErrorNumber>, int>));
  EXPECT_EQ(TnLaErr::unknown_error, -1);
  EXPECT_EQ(TnLaErr::la_error_base, 16);
  EXPECT_EQ(TnLaErr::singular_matrix, 17);
  EXPECT_EQ(TnLaErr::singular_factor, 18);
}

TEST(ErrorNumber, OfAFreshResultIsMinusOneAndNoViolation) {
  const AssertionLog log;
  EXPECT_EQ(TnLaErr::error_number(TnResult()), -1);
  EXPECT_EQ(log.count(), 0u);
}

TEST(ErrorNumber, IsWhatTheLibraryFiled) {
  for (int number = -1; number <= 15; ++number) {
    SCOPED_TRACE(number);
    expect_condition(made(number), number, core_text(number).c_str(), kNoCall);
  }
  expect_condition(made(16), 16, "", kNoCall);
  expect_condition(made(17), 17, "Singular matrix found.", kNoCall);
  expect_condition(made(18), 18, "Decomposition contains singular factor.", kNoCall);
}

TEST(ErrorNumber, OutOfRangeIsAViolationUnderAnyPackage) {
  for (int number : {INT_MIN, -20, -3, -2, 19, 20, 21, 100, INT_MAX}) {
    SCOPED_TRACE(number);
    expect_condition(made(number), -1, "Unknown error.", kOneCall);
    expect_condition(filed(number, foreign), -1, "Unknown error.", kOneCall);
    expect_condition(filed(number, no_name), -1, "Unknown error.", kOneCall);
  }
}

TEST(ErrorNumber, CoreNumbersBelongToEveryPackage) {
  for (int number = -1; number <= 15; ++number) {
    SCOPED_TRACE(number);
    for (const TnString* const* package : {&foreign, &equal_text, &no_name})
      expect_condition(filed(number, *package), number, core_text(number).c_str(), kNoCall);
  }
}

TEST(ErrorNumber, LibraryNumbersBelongToTheLibrarysPackageOnly) {
  const TnString* const package_id = TnLa::package_id();
  for (int number : {16, 17, 18}) {
    SCOPED_TRACE(number);
    for (const TnString* const* package : {&foreign, &equal_text, &package_id, &no_name})
      expect_condition(filed(number, *package), -1, "Unknown error.", kOneCall);
  }
}

TEST(ErrorNumber, PackageIsTheStringNotThePointerToIt) {
  const TnString* const other_pointer = own();
  ASSERT_NE(&other_pointer, package_of(made(17)));
  expect_condition(filed(16, other_pointer), 16, "", kNoCall);
  expect_condition(filed(17, other_pointer), 17, "Singular matrix found.", kNoCall);
  expect_condition(filed(18, other_pointer), 18, "Decomposition contains singular factor.", kNoCall);
}

// --- Filing ---------------------------------------------------------------------------------------------

TEST(MakeResult, StoresCodeAndNumberWithoutLookingAtThem) {
  const AssertionLog log;
  for (CodeID filed_code : {CodeID::none, CodeID::information, CodeID::warning, CodeID::error,
                            static_cast<CodeID>(77), static_cast<CodeID>(-5)}) {
    for (int filed_number : {INT_MIN, -2, -1, 0, 15, 16, 17, 18, 19, INT_MAX}) {
      const TnResult result = made(filed_number, filed_code);
      CodeID code{};
      int number = 0;
      const TnString** package = nullptr;
      result.get_error_condition(code, number, package);
      EXPECT_EQ(code, filed_code);
      EXPECT_EQ(number, filed_number);
      EXPECT_NE(package, nullptr);
    }
  }
  EXPECT_EQ(log.count(), 0u);
}

TEST(MakeResult, ReplacesAnEarlierCondition) {
  TnResult result = filed(3, foreign);
  TnLaErr::make_result(CodeID::warning, TnLaErr::singular_factor, result);
  expect_condition(result, 18, "Decomposition contains singular factor.", kNoCall);
}

// --- Translation ----------------------------------------------------------------------------------------

TEST(Translation, IsTheOneThatResultsCarry) {
  const TnString* const package = own();
  for (int number = -3; number <= 20; ++number) {
    SCOPED_TRACE(number);
    EXPECT_EQ(Translator::translate_error_number(package, number), made(number).error_text());
    EXPECT_EQ(Translator::translate_error_number(foreign, number), filed(number, foreign).error_text());
  }
}

template <class Class>
concept ShowsItsTranslation = requires {
  &Class::translate_error_number;
};

TEST(Translation, IsReservedToDerivedClasses) {
  EXPECT_FALSE(ShowsItsTranslation<TnLaErr>);
  EXPECT_TRUE(ShowsItsTranslation<Translator>);
  EXPECT_TRUE((std::is_same_v<decltype(&Translator::translate_error_number), TnResult::Translation>));
}

// --- Handlers -------------------------------------------------------------------------------------------

TEST(Handler, MayThrowOutOfBothChecks) {
  const ThrowingAssertions throwing;
  for (const TnResult& result : {made(19), made(-2), filed(17, foreign)}) {
    EXPECT_THROW(TnLaErr::error_number(result), AssertionThrown);
    EXPECT_THROW(result.error_text(), AssertionThrown);
  }
  EXPECT_EQ(TnLaErr::error_number(made(17)), 17);
}

TEST(Handler, IsCalledAnewForEachNumber) {
  const AssertionLog log;
  for (int number = -3; number <= 20; ++number) TnLaErr::error_number(made(number));
  EXPECT_EQ(log.files(), Files(4, "src/tnlaerr.cpp"));  // -3, -2, 19 and 20
}

}  // namespace
