// Placeholder until the JSON model lands.
int main() { return 0; }
