// SPDX-License-Identifier: MIT
#include "platform/error/error_helpers.h"
#include "platform/error/string_table.h"

#include <gtest/gtest.h>

namespace plyra {
namespace {

/// Installs a known "Errors" table for one test and puts the previous one back.
class ErrorsTableScope {
public:
    explicit ErrorsTableScope(const char* text)
        : m_previous(errorsTable())
    {
        std::string error;
        std::optional<StringTable> table = StringTable::parse(text, &error);
        EXPECT_TRUE(table) << error;
        setErrorsTable(std::make_shared<StringTable>(table ? *table : StringTable()));
    }
    ~ErrorsTableScope() { setErrorsTable(m_previous); }
    ErrorsTableScope(const ErrorsTableScope&) = delete;
    ErrorsTableScope& operator=(const ErrorsTableScope&) = delete;

private:
    std::shared_ptr<const StringTable> m_previous;
};

constexpr const char* kTable = R"(
"Render.3.Description" = "Rendering failed.";
"Render.3.FailureReason" = "The frame was too large.";
"org.plyra.Plyra.ErrorDomain.2.FailureReason" = "The package is damaged.";
"org.plyra.Plyra.ErrorDomain.2.RecoverySuggestion" = "Open an older copy.";
)";

TEST(ErrorHelpers, LooksUpTheThreeTextsUnderTheStem)
{
    ErrorsTableScope scope(kTable);
    const ErrorUserInfo info = userInfoForErrorDomain("Render", 3);
    EXPECT_EQ(info.at(kLocalizedDescriptionKey), "Rendering failed.");
    EXPECT_EQ(info.at(kLocalizedFailureReasonErrorKey), "The frame was too large.");
    // Missing from the table: the key itself is the text.
    EXPECT_EQ(info.at(kLocalizedRecoverySuggestionErrorKey), "Render.3.RecoverySuggestion");
    EXPECT_EQ(info.size(), 3u);
}

TEST(ErrorHelpers, NegativeCodesKeepTheirSign)
{
    ErrorsTableScope scope("");
    const ErrorUserInfo info = userInfoForErrorDomain("Render", -5);
    EXPECT_EQ(info.at(kLocalizedDescriptionKey), "Render.-5.Description");
    EXPECT_EQ(info.at(kLocalizedFailureReasonErrorKey), "Render.-5.FailureReason");
    EXPECT_EQ(info.at(kLocalizedRecoverySuggestionErrorKey), "Render.-5.RecoverySuggestion");
}

TEST(ErrorHelpers, ExtraEntriesWinOverLookedUpTexts)
{
    ErrorsTableScope scope(kTable);
    const ErrorPtr error = applicationErrorWithCode(2, {{kLocalizedDescriptionKey, "Could not open."}, {"Path", "/x"}});
    EXPECT_EQ(error->domain(), "org.plyra.Plyra.ErrorDomain");
    EXPECT_EQ(applicationErrorDomain(), "org.plyra.Plyra.ErrorDomain");
    EXPECT_EQ(error->code(), 2);
    EXPECT_EQ(*error->localizedDescription(), "Could not open.");
    EXPECT_EQ(*error->localizedFailureReason(), "The package is damaged.");
    EXPECT_EQ(*error->localizedRecoverySuggestion(), "Open an older copy.");
    EXPECT_EQ(*error->userInfoValue("Path"), "/x");
    EXPECT_FALSE(error->userInfoValue("Other"));
}

TEST(ErrorHelpers, ExceptionWithErrorCarriesTheVeryError)
{
    const ErrorPtr error = errorWithDomain("Render", 3);
    const Exception exception = exceptionWithError(error, "frame %d of %s", 7, "movie");
    EXPECT_EQ(exception.name(), kGenericException);
    EXPECT_EQ(exception.reason(), "frame 7 of movie");
    EXPECT_STREQ(exception.what(), "frame 7 of movie");
    EXPECT_EQ(exception.error(), error);
    EXPECT_EQ(Exception("Other", "no error").error(), nullptr);
}

TEST(ErrorHelpers, RaiseErrorThrowsAGenericException)
{
    const ErrorPtr error = errorWithDomain("Render", 3);
    try {
        raiseError(error, "%s failed", "copy");
        FAIL() << "raiseError returned";
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.name(), "NSGenericException");
        EXPECT_EQ(exception.reason(), "copy failed");
        EXPECT_EQ(exception.error(), error);
    }
}

TEST(ErrorHelpers, RaiseErrorDomainNamesTheExceptionAfterTheDomain)
{
    ErrorsTableScope scope(kTable);
    try {
        raiseErrorDomain("Render", 3, "at %.1f", 0.5);
        FAIL() << "raiseErrorDomain returned";
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.name(), "Render");
        EXPECT_EQ(exception.reason(), "at 0.5");
        ASSERT_TRUE(exception.error());
        EXPECT_EQ(exception.error()->domain(), "Render");
        EXPECT_EQ(exception.error()->code(), 3);
        EXPECT_EQ(*exception.error()->localizedDescription(), "Rendering failed.");
    }
}

TEST(ErrorHelpers, RaiseOSStatusUsesTheStatusDomain)
{
    try {
        raiseOSStatus(-50, "status %d", -50);
        FAIL() << "raiseOSStatus returned";
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.name(), "NSGenericException");
        ASSERT_TRUE(exception.error());
        EXPECT_EQ(exception.error()->domain(), "NSOSStatusErrorDomain");
        EXPECT_EQ(exception.error()->code(), -50);
        EXPECT_EQ(exception.reason(), "status -50");
    }
}

TEST(ErrorHelpers, InternalInconsistencyNamesWhereItHappened)
{
    const Exception exception = Exception::internalInconsistency("broken", "addTrack", "helpers.cpp", 12);
    EXPECT_EQ(exception.name(), "NSInternalInconsistencyException");
    EXPECT_EQ(exception.location(), "addTrack, helpers.cpp:12");
    EXPECT_EQ(exception.error(), nullptr);
}

} // namespace
} // namespace plyra
