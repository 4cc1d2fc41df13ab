int main() {
}
