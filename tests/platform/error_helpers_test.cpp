// SPDX-License-Identifier: MIT
#include "platform/error/error_helpers.h"
#include "platform/error/string_table.h"

#include <gtest/gtest.h>

#include <functional>

namespace plyra {
namespace {

/// Installs a known "Errors" table for one test and puts the previous one back.
class ErrorsTableScope {
public:
    ErrorsTableScope()
        : m_previous(errorsTable())
    {
        std::optional<StringTable> table = StringTable::parse(R"(
"Render.3.Description" = "Rendering failed.";
"Render.3.FailureReason" = "The frame was too large.";
"org.plyra.Plyra.ErrorDomain.2.FailureReason" = "The package is damaged.";
"org.plyra.Plyra.ErrorDomain.2.RecoverySuggestion" = "Open an older copy.";
)");
        EXPECT_TRUE(table);
        setErrorsTable(std::make_shared<StringTable>(table ? *table : StringTable()));
    }
    ~ErrorsTableScope() { setErrorsTable(m_previous); }
    ErrorsTableScope(const ErrorsTableScope&) = delete;
    ErrorsTableScope& operator=(const ErrorsTableScope&) = delete;

private:
    std::shared_ptr<const StringTable> m_previous;
};

/// The exception `operation` throws; fails the test when it throws none.
Exception thrownBy(const std::function<void()>& operation)
{
    try {
        operation();
    } catch (const Exception& exception) {
        return exception;
    }
    ADD_FAILURE() << "no exception";
    return Exception("none", "none");
}

TEST(ErrorHelpers, LooksUpTheThreeTextsUnderTheStemOrUsesTheKey)
{
    ErrorsTableScope scope;
    struct Row { int code; const char* description; const char* reason; const char* suggestion; };
    for (const Row& r : {Row{3, "Rendering failed.", "The frame was too large.", "Render.3.RecoverySuggestion"},
                         Row{-5, "Render.-5.Description", "Render.-5.FailureReason", "Render.-5.RecoverySuggestion"}}) {
        const ErrorUserInfo info = userInfoForErrorDomain("Render", r.code);
        EXPECT_EQ(info.size(), 3u);
        EXPECT_EQ(info.at(kLocalizedDescriptionKey), r.description);
        EXPECT_EQ(info.at(kLocalizedFailureReasonErrorKey), r.reason);
        EXPECT_EQ(info.at(kLocalizedRecoverySuggestionErrorKey), r.suggestion);
    }
}

TEST(ErrorHelpers, ExtraEntriesWinOverLookedUpTexts)
{
    ErrorsTableScope scope;
    const ErrorPtr error = applicationErrorWithCode(2, {{kLocalizedDescriptionKey, "Could not open."}, {"Path", "/x"}});
    EXPECT_EQ(error->domain(), "org.plyra.Plyra.ErrorDomain");
    EXPECT_EQ(error->code(), 2);
    EXPECT_EQ(*error->localizedDescription(), "Could not open.");
    EXPECT_EQ(*error->localizedFailureReason(), "The package is damaged.");
    EXPECT_EQ(*error->localizedRecoverySuggestion(), "Open an older copy.");
    EXPECT_EQ(*error->userInfoValue("Path"), "/x");
    EXPECT_FALSE(error->userInfoValue("Other"));
}

TEST(ErrorHelpers, ExceptionsCarryTheirErrorAndFormattedReason)
{
    const ErrorPtr error = errorWithDomain("Render", 3);
    const Exception made = exceptionWithError(error, "frame %d of %s", 7, "movie");
    EXPECT_EQ(made.name(), kGenericException);
    EXPECT_STREQ(made.what(), "frame 7 of movie");
    EXPECT_EQ(made.error(), error);
    EXPECT_EQ(Exception("Other", "no error").error(), nullptr);

    const Exception raised = thrownBy([&] { raiseError(error, "%s failed", "copy"); });
    EXPECT_EQ(raised.name(), "NSGenericException");
    EXPECT_EQ(raised.reason(), "copy failed");
    EXPECT_EQ(raised.error(), error);

    const Exception status = thrownBy([] { raiseOSStatus(-50, "status %d", -50); });
    EXPECT_EQ(status.name(), "NSGenericException");
    EXPECT_EQ(status.reason(), "status -50");
    ASSERT_TRUE(status.error());
    EXPECT_EQ(status.error()->domain(), "NSOSStatusErrorDomain");
    EXPECT_EQ(status.error()->code(), -50);
}

TEST(ErrorHelpers, RaiseErrorDomainNamesTheExceptionAfterTheDomain)
{
    ErrorsTableScope scope;
    const Exception exception = thrownBy([] { raiseErrorDomain("Render", 3, "at %.1f", 0.5); });
    EXPECT_EQ(exception.name(), "Render");
    EXPECT_EQ(exception.reason(), "at 0.5");
    ASSERT_TRUE(exception.error());
    EXPECT_EQ(exception.error()->domain(), "Render");
    EXPECT_EQ(exception.error()->code(), 3);
    EXPECT_EQ(*exception.error()->localizedDescription(), "Rendering failed.");
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
