// The rooms of the house. A room finds the names of those that it includes without saying whose they are; its
// own come first.
#pragma once

namespace corvinade {
namespace fit {}
namespace core {}
namespace engine {}
namespace import {}
namespace paraboloid {}
namespace bundle {}
namespace analysis {}
namespace graphics {}
namespace paint {}
namespace cli {}
namespace ui {}

using namespace fit;
using namespace core;
using namespace engine;
using namespace import;
using namespace paraboloid;
using namespace bundle;
using namespace analysis;
using namespace graphics;
using namespace paint;
using namespace cli;
using namespace ui;
}  // namespace corvinade
