// SPDX-License-Identifier: MIT
#include "platform/x11/X11WindowFacts.h"

void X11WindowFacts::copyFields(const X11WindowFacts& other, unsigned fields) {
    if (fields & Attributes) {
        overrideRedirect = other.overrideRedirect;
        viewable = other.viewable;
        mapped = other.mapped;
        inputOnly = other.inputOnly;
    }
    if (fields & Geometry) {
        clientRect = other.clientRect;
        borderWidth = other.borderWidth;
        frameExtents = other.frameExtents;
    }
    if (fields & Type) {
        types = other.types;
    }
    if (fields & State) {
        states = other.states;
    }
    if (fields & Desktop) {
        desktop = other.desktop;
    }
    if (fields & Pid) {
        pid = other.pid;
    }
    if (fields & Opacity) {
        opacity = other.opacity;
    }
    if (fields & Title) {
        title = other.title;
    }
    if (fields & Class) {
        classInstance = other.classInstance;
        className = other.className;
    }
    if (fields & SizeHints) {
        minimumSize = other.minimumSize;
        maximumSize = other.maximumSize;
    }
    if (fields & Transient) {
        transientFor = other.transientFor;
    }
}
