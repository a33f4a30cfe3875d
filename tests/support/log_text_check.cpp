// Built into every test program: each test starts with a sink that notes every format text at
// the debug level, and the program fails at its end if the library emitted a text that is
// not one of its known messages.
#include <gtest/gtest.h>

#include "log_texts.h"
#include "qm_interface.h"

namespace {

class InstallNotingSink : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override {
        qm_set_log_call_back(qm_test::noting_sink, LOG_LEVEL_DEBUG);
    }
};

class CheckNotedTexts : public ::testing::Environment {
    void TearDown() override {
        for (const std::string& format : qm_test::noted_log_formats())
            EXPECT_TRUE(qm_test::known_log_texts().count(format)) << "unknown log text: \"" << format << '"';
    }
};

const bool g_registered = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new InstallNotingSink);
    ::testing::AddGlobalTestEnvironment(new CheckNotedTexts);
    return true;
}();

}  // namespace
