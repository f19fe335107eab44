#pragma once
// The display goes away, an X server or a Wayland compositor: the toolkit can do nothing any more and ends the process.
// Or it hangs, and keeps the main thread from ending the program, as a disk may, too.

/// Names what is to be done before. Thread: main, once the toolkit is there.
/// @param clean  called once the display has gone; touches neither toolkit nor display
/// @param closeOthers  called before it where the display only hangs, and what others show on it would stay
void before_lost_display(void (*clean)(), void (*closeOthers)());

/// Ends the process when the X server has gone, as the toolkit does where it notices. For waits that may keep the main
/// thread from the toolkit. Thread: any.
void leave_lost_display();

/// How long a program that was asked to end may need until its end begins: far more than the longest callback takes.
inline constexpr int longestEndSeconds = 30;
/// Waits until the main thread ends the program, which was asked to end; then ends the process, as a display that hangs
/// keeps that thread for ever. Thread: any but main.
/// @param patienceSeconds  counted, no clock is read: the machine may be stopped meanwhile
void leave_hung_program(int patienceSeconds = longestEndSeconds);
/// The end is the main thread's own from here on. Does not return when `leave_hung_program` was first. Thread: main.
void claim_end();
