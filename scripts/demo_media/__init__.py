"""The media of the demo vault, one module per kind. Every recipe makes one file with public tools."""
