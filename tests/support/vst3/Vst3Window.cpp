// SPDX-License-Identifier: AGPL-3.0-only
#include "support/vst3/Vst3Window.h"

#include "base/Failure.h"

#include <pluginterfaces/gui/iplugviewcontentscalesupport.h>

using namespace Steinberg;

Vst3Window::Vst3Window (const Vst3Instance& instance, const Host& host)
    : runLoop (host.loop),
      frame (*this, host.loop),
      plugView (instance.controller().createView (Vst::ViewType::kEditor))
{
    if (plugView == nullptr)
        throw larkspire::Failure ("the plug-in", "has no editor");

    plugView->setFrame (&frame);

    if (host.scale > 0.0f)
        setScale (host.scale);

    ViewRect size;
    require (plugView->getSize (&size), "asking for the view's size");
    show (host.x, host.y, size.getWidth(), size.getHeight());
    require (plugView->attached (reinterpret_cast<void*> (handle()), // NOLINT(performance-no-int-to-ptr)
                                 kPlatformTypeX11EmbedWindowID),
             "attaching the view");
}

Vst3Window::~Vst3Window()
{
    plugView->removed();
    plugView->setFrame (nullptr);
}

tresult Vst3Window::setScale (float scale) const
{
    const auto scalable = queryFor<IPlugViewContentScaleSupport> (*plugView, IPlugViewContentScaleSupport_iid);
    return scalable != nullptr ? scalable->setContentScaleFactor (scale) : kNoInterface;
}

void Vst3Window::turn()
{
    if (runLoop != nullptr)
        runLoop->turn();
}

tresult PLUGIN_API Vst3Window::Frame::queryInterface (const TUID wanted, void** object)
{
    if (loop != nullptr && FUnknownPrivate::iidEqual (wanted, Linux::IRunLoop_iid))
        return loop->queryInterface (wanted, object);

    return HostObject::queryInterface (wanted, object);
}

tresult PLUGIN_API Vst3Window::Frame::resizeView (IPlugView* view, ViewRect* size)
{
    if (window.handle() != 0) // before it is shown the view is asked
        window.resize (size->getWidth(), size->getHeight());

    return view->onSize (size);
}
