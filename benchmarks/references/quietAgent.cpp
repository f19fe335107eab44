// An agent that costs nothing: it waits to be ended.

#include <unistd.h>

int main()
{
    return pause();
}
