#!/usr/bin/python3
"""A day's work by the mouse: snoozed, back, dismissed three ways, reactivated, hidden, restarted."""
import day

day.work(day.Mouse())
