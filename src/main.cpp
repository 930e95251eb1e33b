// Fills the outlets and the step table, opens the window.

int main()
{
    return 0;
}
