#ifndef WIDGETWORK_H
#define WIDGETWORK_H

class QWidget;

namespace benchmark {
class State;
}

/// Draws the widget into an image, frame after frame. The benchmark's argument is the scale of the screen.
void drawFrames(benchmark::State &state, QWidget *widget);

/// Lets the event loop run for a while each time. Counters: how often it woke up and how often the widget was painted,
/// both a second.
void runEventLoop(benchmark::State &state, QWidget *widget);

#endif // WIDGETWORK_H
