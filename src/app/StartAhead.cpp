#include "app/StartAhead.h"

#include "appearance/controls/HeroArt.h"
#include "appearance/controls/OrvoMark.h"

#include <QFontDatabase>
#include <QPainterPath>

#include <fontconfig/fontconfig.h>

namespace orvo {
namespace {

// Where no thread is to be had, those who need the results make them.
constexpr auto policy = std::launch::async | std::launch::deferred;

}  // namespace

// No QObject may be made there: Qt takes the thread of the first one for the main thread.
StartAhead::StartAhead()
    : m_done(std::async(policy, [] {
          // Qt does the same when it makes the first font, and finds it done.
          FcInit();
          HeroArt::prepare();
          (void)brand::ring();
      })) {}

// The first question fills Qt's font database, which it guards with a lock of its own.
FontFamiliesAhead::FontFamiliesAhead()
    : m_done(std::async(policy, [] { (void)QFontDatabase::families(); })) {}

}  // namespace orvo
