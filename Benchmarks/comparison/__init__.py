"""What `compare.py` is made of: running programs in turn, the measures, and the table."""
