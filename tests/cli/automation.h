// What the tests of the automation stand on: requests in this process.
#pragma once

#include <nlohmann/json.hpp>

#include "cli/automate.h"
#include "support/fixture.h"

using namespace corvinade;

using nlohmann::json;

class Automated : public Program {
protected:
    static json Ask(const json& request) {
        bool quit = false;
        return json::parse(AnswerLine(request.dump(), quit));
    }
    // A request that must succeed.
    static json Good(const json& request) {
        json reply = Ask(request);
        EXPECT_EQ(reply["ok"], true) << request.dump() << "\n" << reply.dump();
        return reply;
    }
};
