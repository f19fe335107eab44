#pragma once
// The display goes away, an X server or a Wayland compositor: the toolkit can do nothing any more and ends the process.
// Or it hangs, and keeps the main thread from ending the program.

/// Names what is to be done before the process ends. Thread: main, before `watch_display`.
/// @param clean  called once the display has gone or is given up; touches neither toolkit nor display
/// @param closeOthers  called before it where the display only hangs, and what others show on it would stay
void before_leaving(void (*clean)(), void (*closeOthers)());
/// From here on the display's end is noticed. Thread: main, once the toolkit is there.
void watch_display();

/// Ends the process when the X server has gone, as the toolkit does where it notices, and not in the middle of an
/// `UnbrokenWork`. For waits that may keep the main thread from the toolkit. Thread: any.
void leave_lost_display();

/// How long a program that was asked to end may need until its end begins: far more than the longest callback takes.
inline constexpr int longestEndSeconds = 30;
/// Work of the main thread that must not be broken off, however long it takes: on a slow disk it may take long, and
/// half of it is worse than nothing. None begins once the process is being left. It must not use the toolkit's display,
/// or a lost one would wait for it for ever. Thread: main; a program has one at a time.
class UnbrokenWork
{
public:
    UnbrokenWork();
    ~UnbrokenWork();
    UnbrokenWork(const UnbrokenWork &) = delete;
    UnbrokenWork &operator=(const UnbrokenWork &) = delete;
};
/// Waits until the main thread ends the program, which was asked to end; then ends the process, as a display that hangs
/// keeps that thread for ever. Thread: any but main.
/// @param patienceSeconds  without unbroken work; counted, no clock is read: the machine may be stopped meanwhile
void leave_hung_program(int patienceSeconds = longestEndSeconds);
/// The end is the main thread's own from here on. Does not return when `leave_hung_program` was first. Thread: main.
void claim_end();
