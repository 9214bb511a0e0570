"""What draw_pages.py draws with: the sheet, its words, pictures and the damage a scan does."""
