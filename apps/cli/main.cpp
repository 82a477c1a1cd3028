// The command brenvolt.
int main() { return 0; }
