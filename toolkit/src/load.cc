// Loading the startup datastore: what is in it exists, and callbacks hear of it as `load`.
#include "engine.h"

#include "errors.h"
#include "toolkit/log.h"

namespace tk {

void Engine::loadStartup(Tree data)
{
    const auto turn = takeTurn();
    ChangeNode root;
    Plan plan;
    {
        const std::unique_lock lock(treeLock_);
        checkWholeTree(data.get(), context_.ly(), nullptr);
        running_ = data.release();
        markWhens(running_);
        renewStamp();
        plan = planLoad(root, running_);
    }
    for (const EditPhase phase : {validate, apply, commit})
        loadPhase(plan, phase);
}

// Each callback by itself: a refusal is logged, the node stays and its later phases still come.
void Engine::loadPhase(Plan &plan, EditPhase phase)
{
    for (const auto &told : plan) {
        RequestFrame frame;
        const Status status = call(*told, phase, frame);
        if (status == kOk || log_get_system_log_level() < 1)
            continue;
        for (const Error &error : frame.header.errors(0, status))
            log_error("\nload of %s: %s refused it: %s\n", error.path.c_str(), agt_cbtype_name(phase),
                      error.message.c_str());
    }
}

} // namespace tk
