// Rows of queries against the catalogue arm: the exact request, the scripted answer, the
// result and what the outputs must hold afterwards.
#ifndef QM_TEST_ANSWERED_ROWS_H
#define QM_TEST_ANSWERED_ROWS_H

#include "catalogue_fixture.h"

namespace catalogue_test {

struct AnsweredRow {
    const char* behaviour;
    Call call;
    std::string request;
    std::string reply;  // the answer to the request's command
    int expected = 0;
    std::function<void()> check = [] {};
};

class AnsweredArm : public CatalogueArm {
protected:
    void expect_each_answered(const std::vector<AnsweredRow>& rows) {
        for (const AnsweredRow& row : rows) {
            SCOPED_TRACE(row.behaviour);
            controller.reply(command_of(row.request), row.reply);
            EXPECT_EQ(fresh(row.call), row.expected);
            EXPECT_EQ(first_line(), row.request);
            row.check();
        }
    }
};

}  // namespace catalogue_test

#endif
