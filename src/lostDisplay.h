#pragma once
// The display goes away, an X server or a Wayland compositor: the toolkit can do nothing any more and ends the process.

/// Names what is to be done before. Thread: main, once the toolkit is there.
/// @param clean  called once the display has gone; touches neither toolkit nor display
void before_lost_display(void (*clean)());

/// Ends the process when the X server has gone, as the toolkit does where it notices. For waits that may keep the main
/// thread from the toolkit. Thread: any.
void leave_lost_display();
